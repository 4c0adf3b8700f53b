// client/windows/qt/colors.cpp: light or dark windows, where the user has chosen.
#include "client/windows/qt/colors.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

namespace pavex {

namespace {

struct ColorRow {
    QPalette::ColorRole role;
    QRgb light;
    QRgb dark;
    QRgb lightDisabled;
    QRgb darkDisabled;
};
constexpr ColorRow kColors[] = {
    {QPalette::Window, 0xEFEFEF, 0x353538, 0xEFEFEF, 0x353538},
    {QPalette::WindowText, 0x1A1A1A, 0xF0F0F0, 0x8A8A8A, 0x86868A},
    {QPalette::Base, 0xFFFFFF, 0x1D1D1F, 0xF4F4F4, 0x2B2B2D},
    {QPalette::AlternateBase, 0xF5F5F5, 0x262628, 0xF5F5F5, 0x262628},
    {QPalette::ToolTipBase, 0xFFFFE1, 0x3A3A3D, 0xFFFFE1, 0x3A3A3D},
    {QPalette::ToolTipText, 0x1A1A1A, 0xF0F0F0, 0x1A1A1A, 0xF0F0F0},
    {QPalette::Text, 0x1A1A1A, 0xF0F0F0, 0x8A8A8A, 0x86868A},
    {QPalette::PlaceholderText, 0x767676, 0x9A9A9E, 0x8A8A8A, 0x86868A},
    {QPalette::Button, 0xF3F3F3, 0x48484B, 0xEFEFEF, 0x3C3C3F},
    {QPalette::ButtonText, 0x1A1A1A, 0xF0F0F0, 0x8A8A8A, 0x86868A},
    {QPalette::BrightText, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF},
    {QPalette::Light, 0xFFFFFF, 0x58585B, 0xFFFFFF, 0x58585B},
    {QPalette::Midlight, 0xF7F7F7, 0x4E4E51, 0xF7F7F7, 0x4E4E51},
    {QPalette::Mid, 0xB8B8B8, 0x222224, 0xB8B8B8, 0x222224},
    {QPalette::Dark, 0x9F9F9F, 0x19191B, 0x9F9F9F, 0x19191B},
    {QPalette::Shadow, 0x767676, 0x0C0C0D, 0x767676, 0x0C0C0D},
    {QPalette::Highlight, 0x2A6FC9, 0x3B82E0, 0x9BB8DC, 0x3A4F6B},
    {QPalette::HighlightedText, 0xFFFFFF, 0xFFFFFF, 0xFFFFFF, 0xB0B0B4},
    {QPalette::Link, 0x1A5FB4, 0x78AEED, 0x8A8A8A, 0x86868A},
    {QPalette::LinkVisited, 0x613583, 0xC6A0E0, 0x8A8A8A, 0x86868A},
};

QPalette MakePalette(bool dark)
{
    QPalette palette;
    for (const ColorRow& row : kColors) {
        palette.setColor(row.role, QColor(dark ? row.dark : row.light));
        palette.setColor(QPalette::Disabled, row.role, QColor(dark ? row.darkDisabled : row.lightDisabled));
    }
    return palette;
}

}  // namespace

void UseColors(WindowColors colors)
{
    if (colors == WindowColors::OfSystem)
        return;
    QApplication::setStyle(QStyleFactory::create("Fusion"));  // a system's own style may insist on its colours
    QApplication::setPalette(MakePalette(colors == WindowColors::Dark));
}

}  // namespace pavex
