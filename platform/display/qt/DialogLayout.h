// SPDX-License-Identifier: MIT
// Where a dialog's controls lie on the screen: dialog units turned into Qt's pixels, which follow the
// screen's scaling by themselves.
#pragma once

#include "platform/dialogs/Window.h"

#include <QFont>
#include <QRect>
#include <QString>

namespace platform
{

bool IsMultiLine(const Window& control);

QString ToQString(const std::wstring& text);

// The dialog's font. Where its face is missing, one whose letters are as wide stands in for it.
QFont FontOf(const DialogFont& font);

// Pixels of one horizontal and one vertical dialog unit.
struct DialogUnits
{
    double x = 0.0;
    double y = 0.0;

    QRect ToPixels(const DialogRect& rect) const;
};

// Units as Windows has them: a quarter of the average width of the 52 letters, an eighth of the font's
// height. Another font than the template's author had can be wider in just the letters of one caption; the
// horizontal unit then grows until every caption fits into its control, so that none is cut off.
DialogUnits UnitsOf(const Window& dialog);

// Where a control lies in a dialog that is larger than its template by `growth`, in pixels. The boxes that
// reach furthest to the right get wider, one of several lines higher, too; buttons of the right half keep to
// their edge.
QRect PlaceOf(const Window& control, const DialogUnits& units, QSize growth);

} // namespace platform
