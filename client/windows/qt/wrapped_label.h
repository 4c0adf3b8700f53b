// client/windows/qt/wrapped_label.h: a text over as many lines as it takes.
// A QLabel breaks lines at blanks only, and the path of a database may have none.
#pragma once

#include <QLabel>

namespace pavex {

// Plain text, broken at words, or anywhere where a word is longer than the line.  Keeps its room while it is
// hidden, so that nothing moves when a status line comes or goes.
class WrappedLabel : public QLabel {
public:
    explicit WrappedLabel(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace pavex
