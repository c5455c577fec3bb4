// SPDX-License-Identifier: MIT
#include "platform/display/qt/Icons.h"

#include <QImage>
#include <QPixmap>
#include <QtEndian>

namespace platform
{

namespace
{

constexpr int kIconSizes[] = {16, 24, 32, 48, 64, 128, 256};

// A bitmap of an icon resource lacks the file header that readers want: a directory with this one image.
QByteArray WithIconHeader(const IconImage& image)
{
    constexpr quint32 kHeaderSize = 22;
    QByteArray file(kHeaderSize, '\0');
    qToLittleEndian<quint16>(1, file.data() + 2); // an icon
    qToLittleEndian<quint16>(1, file.data() + 4); // images
    qToLittleEndian<quint32>(static_cast<quint32>(image.size), file.data() + 14);
    qToLittleEndian<quint32>(kHeaderSize, file.data() + 18);
    return file.append(reinterpret_cast<const char*>(image.bytes), static_cast<qsizetype>(image.size));
}

} // namespace

QIcon ToQIcon(HICON icon)
{
    QIcon result;
    for (const int size : kIconSizes)
    {
        const IconImage found = FindIconImage(icon, size);
        if (found.size == 0)
            continue;
        const QImage image = found.isPng ? QImage::fromData(found.bytes, static_cast<int>(found.size), "PNG")
                                         : QImage::fromData(WithIconHeader(found), "ICO");
        if (!image.isNull())
            result.addPixmap(QPixmap::fromImage(image));
    }
    return result;
}

} // namespace platform
