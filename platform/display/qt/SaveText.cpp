// SPDX-License-Identifier: MIT
#include "platform/display/qt/SaveText.h"

#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

namespace platform
{

QString SaveText(const QString& path, const QString& text)
{
    QTemporaryFile file(path + ".XXXXXX"); // 0600, and no name that is there already
    const QByteArray bytes = text.toUtf8();
    if (!file.open() || file.write(bytes) != bytes.size() || !file.flush())
        return file.errorString();
    if (fsync(file.handle()) != 0 ||
        std::rename(QFile::encodeName(file.fileName()), QFile::encodeName(path)) != 0)
        return qt_error_string();
    file.setAutoRemove(false);
    return {};
}

} // namespace platform
