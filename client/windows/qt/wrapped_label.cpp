// client/windows/qt/wrapped_label.cpp: a text over as many lines as it takes.
#include "client/windows/qt/wrapped_label.h"

#include <QPainter>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

namespace pavex {

namespace {

// The comfortable length of a line, in characters of average width.
constexpr int kLineCharacters = 84;
// What a line takes at least.
constexpr int kShortestLineCharacters = 24;

// Lays the text out in lines of this width; their height.
int LayOut(QTextLayout& layout, int width, Qt::Alignment alignment = Qt::AlignLeft)
{
    QTextOption option(alignment);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    qreal height = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition(QPointF(0, height));
        height += line.height();
    }
    layout.endLayout();
    return static_cast<int>(std::ceil(height));
}

}  // namespace

WrappedLabel::WrappedLabel(QWidget* parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    policy.setRetainSizeWhenHidden(true);
    setSizePolicy(policy);
}

QSize WrappedLabel::sizeHint() const
{
    const QFontMetrics metrics(font());
    const int width = std::min(metrics.horizontalAdvance(text()) + 1, kLineCharacters * metrics.averageCharWidth());
    return QSize(width, heightForWidth(width)).expandedTo(minimumSizeHint());
}

QSize WrappedLabel::minimumSizeHint() const
{
    const QFontMetrics metrics(font());
    return {kShortestLineCharacters * metrics.averageCharWidth(), metrics.lineSpacing()};
}

int WrappedLabel::heightForWidth(int width) const
{
    QTextLayout layout(text(), font());
    return std::max(LayOut(layout, width), QFontMetrics(font()).lineSpacing());
}

void WrappedLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    QTextLayout layout(text(), font());
    LayOut(layout, contentsRect().width(), alignment());
    painter.setPen(palette().color(foregroundRole()));
    layout.draw(&painter, contentsRect().topLeft());
}

}  // namespace pavex
