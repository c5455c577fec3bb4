// SPDX-License-Identifier: MIT
#include "platform/display/qt/DialogLayout.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QStyle>

#include <algorithm>
#include <cmath>

namespace platform
{

namespace
{

// The part of a control's width that its caption cannot use.
double FrameWidth(WindowKind kind)
{
    const QStyle& style = *QApplication::style();
    switch (kind)
    {
    case WindowKind::PushButton:
        return 2.0 * style.pixelMetric(QStyle::PM_DefaultFrameWidth) + 4.0;
    case WindowKind::CheckBox:
        return style.pixelMetric(QStyle::PM_IndicatorWidth) +
               style.pixelMetric(QStyle::PM_CheckBoxLabelSpacing) + 1.0;
    default:
        return 0.0;
    }
}

double CaptionWidth(const Window& control, const QFontMetricsF& metrics)
{
    const QString caption = ToQString(control.text).remove(u'&');
    if ((control.style & BS_MULTILINE) == 0 || control.kind != WindowKind::PushButton)
        return metrics.horizontalAdvance(caption);
    double widest = 0.0;
    for (const QString& word : caption.split(u' '))
        widest = std::max(widest, metrics.horizontalAdvance(word));
    return widest;
}

bool IsBox(const Window& control)
{
    return control.visible && (control.kind == WindowKind::Edit || control.kind == WindowKind::ComboBox);
}

int RightOf(const Window& control)
{
    return control.rect.x + control.rect.width;
}

bool Widens(const Window& control)
{
    return IsBox(control) && std::ranges::none_of(
                                 control.parent->children, [&](const auto& other)
                                 { return IsBox(*other) && RightOf(*other) > RightOf(control); });
}

} // namespace

QString ToQString(const std::wstring& text)
{
    return QString::fromStdWString(text);
}

QFont FontOf(const DialogFont& font)
{
    QFont result = QApplication::font();
    if (!font.face.empty())
        result.setFamilies({ToQString(font.face), "DejaVu Sans", "Bitstream Vera Sans", "Liberation Sans"});
    result.setPointSize(font.points);
    if (font.weight > 0)
        result.setWeight(static_cast<QFont::Weight>(font.weight));
    result.setItalic(font.italic);
    return result;
}

QRect DialogUnits::ToPixels(const DialogRect& rect) const
{
    return {qRound(rect.x * x), qRound(rect.y * y), qRound(rect.width * x), qRound(rect.height * y)};
}

bool IsMultiLine(const Window& control)
{
    return control.kind == WindowKind::Edit && (control.style & ES_MULTILINE) != 0;
}

QRect PlaceOf(const Window& control, const DialogUnits& units, QSize growth)
{
    QRect place = units.ToPixels(control.rect);
    if (Widens(control))
        place.setWidth(place.width() + growth.width());
    else if (control.kind == WindowKind::PushButton &&
             2 * control.rect.x + control.rect.width > control.parent->rect.width)
        place.translate(growth.width(), 0);
    if (IsMultiLine(control))
        place.setHeight(place.height() + growth.height());
    return place;
}

DialogUnits UnitsOf(const Window& dialog)
{
    const QFontMetricsF metrics(FontOf(dialog.dialog->font));
    const double average =
        metrics.horizontalAdvance("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz") / 52.0;
    DialogUnits units{average / 4.0, std::ceil(metrics.height()) / 8.0};
    for (const auto& control : dialog.children)
    {
        const bool hasCaption = control->kind != WindowKind::Edit && control->kind != WindowKind::ComboBox &&
                                control->rect.width > 0;
        if (hasCaption && !control->text.empty())
            units.x =
                std::max(units.x, (std::ceil(CaptionWidth(*control, metrics)) + FrameWidth(control->kind)) /
                                      control->rect.width);
    }
    return units;
}

} // namespace platform
