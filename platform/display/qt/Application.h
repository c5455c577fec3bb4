// SPDX-License-Identifier: MIT
// Qt's application object, made so that the program around it notices nothing.
#pragma once

#include <clocale>
#include <memory>
#include <string>

class QApplication;

namespace platform
{

// Null when no display server answers. QT_QPA_PLATFORM chooses among Qt's platforms for a desktop, and
// "offscreen" for tests.
std::unique_ptr<QApplication> MakeApplication();

// Puts the C locale back to what it was when this was made. Qt sets it at the start from the environment,
// and an input method of its own sets it at the first key; the program's number and date texts hang on it.
class KeptLocale
{
public:
    KeptLocale() : mLocale(std::setlocale(LC_ALL, nullptr)) {}
    ~KeptLocale();
    KeptLocale(const KeptLocale&) = delete;
    KeptLocale& operator=(const KeptLocale&) = delete;

private:
    std::string mLocale;
};

} // namespace platform
