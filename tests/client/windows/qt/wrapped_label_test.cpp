// tests/client/windows/qt/wrapped_label_test.cpp: a text over as many lines as it takes.
#include "client/windows/qt/wrapped_label.h"

#include <QImage>
#include <QVBoxLayout>

#include "tests/client/windows/qt/window_fixture.h"

namespace {

using pavex::WrappedLabel;

class WrappedLabelTest : public WindowFixture {
protected:
    WrappedLabel& Saying(const QString& text)
    {
        label_.setText(text);
        return label_;
    }
    int Lines(const QString& text, int width)
    {
        return Saying(text).heightForWidth(width) / Saying("x").heightForWidth(width);
    }
    int Width(const QString& text) { return QFontMetrics(label_.font()).horizontalAdvance(text); }
    // True when something is drawn in the lines from this one on.
    bool IsWrittenFrom(int line)
    {
        label_.resize(100, label_.heightForWidth(100) + 20);
        const QImage image = label_.grab().toImage();
        const QRgb ground = image.pixel(99, image.height() - 1);
        for (int y = line * QFontMetrics(label_.font()).lineSpacing(); y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixel(x, y) != ground)
                    return true;
            }
        }
        return false;
    }

private:
    WrappedLabel label_{};
};

TEST_F(WrappedLabelTest, TakesALineWhereTheTextFits)
{
    EXPECT_EQ(Lines("a few words", Width("a few words") + 2), 1);
    EXPECT_EQ(Lines("", 100), 1);
}

TEST_F(WrappedLabelTest, BreaksBetweenWords)
{
    EXPECT_EQ(Lines("mmmmmmmm mmmmmmmm", Width("mmmmmmmm mm")), 2);
    EXPECT_EQ(Lines("mmmmmmmm mmmmmmmm mmmmmmmm", Width("mmmmmmmm mm")), 3);
}

TEST_F(WrappedLabelTest, BreaksAWordThatIsLongerThanALine)
{
    EXPECT_GE(Lines("/" + QString(99, 'm'), Width(QString(30, 'm'))), 4);
}

TEST_F(WrappedLabelTest, DrawsEveryLine)
{
    Saying(QString(99, 'm'));
    const int lines = Lines(QString(99, 'm'), 100);
    Saying(QString(99, 'm'));
    EXPECT_TRUE(IsWrittenFrom(lines - 1));
    EXPECT_FALSE(IsWrittenFrom(lines));
}

TEST_F(WrappedLabelTest, LeavesMarkupAndAmpersandsAlone)
{
    EXPECT_EQ(Saying("<b>a</b> & b").textFormat(), Qt::PlainText);
    const QString marked = QString("<b>mm</b> & ").repeated(5);
    EXPECT_GT(Saying(marked).sizeHint().width(), Width(marked));
}

TEST_F(WrappedLabelTest, KeepsItsRoomWhileItIsHidden)
{
    QWidget window;
    QVBoxLayout layout(&window);
    WrappedLabel label;
    label.setText("text");
    layout.addWidget(&label);
    const QSize before = window.sizeHint();
    label.hide();
    EXPECT_EQ(window.sizeHint(), before);
}

}  // namespace
