// tests/client/windows/qt/measuring.cpp: see the header.
#include "tests/client/windows/qt/measuring.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>

namespace {

bool HasText(const QWidget* widget)
{
    if (const auto* const label = qobject_cast<const QLabel*>(widget))
        return !label->text().isEmpty();
    if (const auto* const button = qobject_cast<const QAbstractButton*>(widget))
        return !button->text().isEmpty();
    return qobject_cast<const QLineEdit*>(widget) != nullptr || qobject_cast<const QListWidget*>(widget) != nullptr;
}

std::string Name(const QWidget& widget)
{
    const QVariant text = widget.property("text");
    return std::string(widget.metaObject()->className()) + " " + widget.objectName().toStdString() + " \"" +
           text.toString().toStdString() + "\"";
}

int HeightNeeded(const QWidget& widget)
{
    return widget.hasHeightForWidth() ? widget.heightForWidth(widget.width()) : widget.minimumSizeHint().height();
}

}  // namespace

std::vector<QWidget*> ShownTexts(const QWidget& window)
{
    std::vector<QWidget*> shown;
    for (QWidget* const widget : window.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->window() == &window && HasText(widget))
            shown.push_back(widget);
    }
    return shown;
}

QRect PlaceIn(const QWidget& window, const QWidget& widget)
{
    return {widget.mapTo(&window, QPoint(0, 0)), widget.size()};
}

void ExpectNothingCutOrOverlapping(const QWidget& window)
{
    const std::vector<QWidget*> shown = ShownTexts(window);
    EXPECT_FALSE(shown.empty());
    for (const QWidget* const widget : shown) {
        const QRect place = PlaceIn(window, *widget);
        EXPECT_TRUE(window.rect().contains(place)) << Name(*widget);
        EXPECT_GE(widget->width(), widget->minimumSizeHint().width()) << Name(*widget);
        EXPECT_GE(widget->height(), HeightNeeded(*widget)) << Name(*widget);
        for (const QWidget* const other : shown)
            EXPECT_TRUE(other == widget || !PlaceIn(window, *other).intersects(place))
                << Name(*widget) << " and " << Name(*other);
    }
}
