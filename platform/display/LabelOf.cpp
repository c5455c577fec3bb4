// SPDX-License-Identifier: MIT
#include "platform/display/LabelOf.h"

#include <algorithm>
#include <climits>

namespace platform
{

namespace
{

constexpr int kLabelHeight = 8; // dialog units, one line of text
constexpr int kClosedListHeight = 14;
constexpr int kFar = INT_MAX;

int DistanceBeside(const DialogRect& label, const DialogRect& box)
{
    const int middle = label.y + label.height / 2;
    const int gap = box.x - (label.x + label.width);
    return middle >= box.y && middle < box.y + box.height && gap >= 0 ? gap : kFar;
}

int DistanceAbove(const DialogRect& label, const DialogRect& box)
{
    const int gap = box.y - (label.y + label.height);
    const bool overlaps = label.x < box.x + box.width && box.x < label.x + label.width;
    return overlaps && gap >= 0 && gap < kLabelHeight ? gap : kFar;
}

const Window* Nearest(const Window& control, int (*distance)(const DialogRect&, const DialogRect&))
{
    DialogRect box = control.rect;
    // The height of a combo box is that of its open list.
    if (control.kind == WindowKind::ComboBox)
        box.height = std::min(box.height, kClosedListHeight);
    const Window* nearest = nullptr;
    int least = kFar;
    for (const auto& label : control.parent->children)
    {
        if (label->kind != WindowKind::Label || label->text.empty())
            continue;
        const int length = distance(label->rect, box);
        if (length < least)
        {
            least = length;
            nearest = label.get();
        }
    }
    return nearest;
}

} // namespace

const Window* LabelOf(const Window& control)
{
    if (control.kind != WindowKind::Edit && control.kind != WindowKind::ComboBox)
        return nullptr;
    const Window* beside = Nearest(control, DistanceBeside);
    return beside != nullptr ? beside : Nearest(control, DistanceAbove);
}

} // namespace platform
