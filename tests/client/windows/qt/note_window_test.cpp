// tests/client/windows/qt/note_window_test.cpp: a note in its window, read and followed as a person does.
#include "client/windows/qt/note_window.h"

#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTextBlock>
#include <QTimer>

#include "tests/client/windows/qt/window_fixture.h"

namespace {

using pavex::NotePiece;

class NoteWindowTest : public WindowFixture {
protected:
    // Shows the window, lets the user at it, and closes it.
    void Run(const std::function<void(QDialog& window)>& use)
    {
        QTimer::singleShot(0, [&use] {
            auto* const window = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (window == nullptr) {
                ADD_FAILURE() << "no window";
            } else {
                EXPECT_TRUE(QTest::qWaitForWindowActive(window));
                use(*window);
            }
            pavex::QtFrontEnd::CloseAll();
        });
        frontEnd_.ShowNote(content_);
    }
    static QTextBrowser* Page(const QDialog& window) { return window.findChild<QTextBrowser*>(); }
    static std::string Text(const QDialog& window) { return Page(window)->toPlainText().toStdString(); }
    static QPushButton* Button(const QDialog& window, const QString& text)
    {
        for (QPushButton* const button : window.findChildren<QPushButton*>())
            if (button->text() == text)
                return button;
        ADD_FAILURE() << "no button " << text.toStdString();
        return nullptr;
    }
    // A click on the text of a link.
    static void ClickOn(const QDialog& window, const QString& text)
    {
        QTextBrowser* const page = Page(window);
        QTextCursor cursor = page->document()->find(text);
        ASSERT_FALSE(cursor.isNull()) << text.toStdString();
        cursor.setPosition(cursor.selectionStart() + 1);
        page->setTextCursor(cursor);
        page->ensureCursorVisible();
        QTest::mouseClick(page->viewport(), Qt::LeftButton, {}, page->cursorRect(cursor).center());
    }

    pavex::QtFrontEnd frontEnd_;
    std::vector<std::string> followed_;
    pavex::NoteWindowContent content_{
        {"Zebra & <b>friends</b>",
         {{"From", "Ann <ann@example.org>"}, {"To", "Bo\nCy"}},
         {{NotePiece::Kind::kParagraph, "The <i>stripes</i>  were &amp; are", {}},
          {NotePiece::Kind::kRule, {}, {}},
          {NotePiece::Kind::kLink, "see \"the other\" <note>", "Pavex:///1//2"}}},
        {"Untitled", "Back", "Copy", "Close"},
        [this](const std::string& url, pavex::NoteView* note, std::string* error) {
            followed_.push_back(url);
            if (url == "gone")
                *error = "<b>gone</b>: the note is deleted";
            else
                *note = {"Other", {}, {{NotePiece::Kind::kLink, "a broken link", "gone"}}};
            return url != "gone";
        }};
};

TEST_F(NoteWindowTest, ShowsTheWholeNoteAndTakesNothingOfItForMarkup)
{
    Run([](QDialog& window) {
        EXPECT_EQ(window.windowTitle(), "Zebra & <b>friends</b>");
        const std::string text = Text(window);
        for (const char* part : {"Zebra & <b>friends</b>", "From", "Ann <ann@example.org>", "To", "Bo\nCy",
                                 "The <i>stripes</i>", "were &amp; are", "see \"the other\" <note>"})
            EXPECT_NE(text.find(part), std::string::npos) << part << " in " << text;
        EXPECT_TRUE(Page(window)->isReadOnly());
        EXPECT_FALSE(Page(window)->openLinks());
    });
}

TEST_F(NoteWindowTest, HasATitleWithoutOne)
{
    content_.note.title.clear();
    Run([](QDialog& window) { EXPECT_EQ(window.windowTitle(), "Untitled"); });
}

TEST_F(NoteWindowTest, FollowsALinkAndComesBack)
{
    Run([this](QDialog& window) {
        QPushButton* const back = Button(window, "&Back");
        EXPECT_FALSE(back->isEnabled());
        ClickOn(window, "see \"the other\"");
        EXPECT_EQ(followed_, std::vector<std::string>{"Pavex:///1//2"});
        EXPECT_EQ(window.windowTitle(), "Other");
        EXPECT_TRUE(back->isEnabled());
        QTest::mouseClick(back, Qt::LeftButton);
        EXPECT_EQ(window.windowTitle(), "Zebra & <b>friends</b>");
        EXPECT_FALSE(back->isEnabled());
    });
}

TEST_F(NoteWindowTest, CanBeReadAndFollowedByKeys)
{
    Run([](QDialog& window) {
        QTest::keyClick(Page(window), Qt::Key_Tab);
        QTest::keyClick(Page(window), Qt::Key_Return);
        EXPECT_EQ(window.windowTitle(), "Other");
        QTest::keyClick(&window, 'b', Qt::AltModifier);
        EXPECT_TRUE(QTest::qWaitFor([&] { return window.windowTitle() == "Zebra & <b>friends</b>"; }));
    });
}

TEST_F(NoteWindowTest, SaysInTheWindowWhyALinkLeadsNowhere)
{
    Run([](QDialog& window) {
        auto* const problem = window.findChild<QLabel*>();
        ClickOn(window, "see \"the other\"");
        EXPECT_FALSE(problem->isVisible());
        ClickOn(window, "a broken link");
        EXPECT_EQ(window.windowTitle(), "Other");
        EXPECT_TRUE(problem->isVisible());
        EXPECT_EQ(problem->text(), "<b>gone</b>: the note is deleted");
        EXPECT_EQ(problem->textFormat(), Qt::PlainText);
    });
}

TEST_F(NoteWindowTest, SaysBelowANoteWhatElseTheUserMustKnow)
{
    content_.note.problem = "the <history> cannot be written";
    Run([](QDialog& window) {
        auto* const problem = window.findChild<QLabel*>();
        EXPECT_TRUE(problem->isVisible());
        EXPECT_EQ(problem->text(), "the <history> cannot be written");
        ClickOn(window, "see \"the other\"");
        EXPECT_FALSE(problem->isVisible());
        QTest::mouseClick(Button(window, "&Back"), Qt::LeftButton);
        EXPECT_TRUE(problem->isVisible());
    });
}

TEST_F(NoteWindowTest, StaysWhereItIsReadWhenTheColoursChange)
{
    content_.note.body.insert(content_.note.body.begin(), 200, {NotePiece::Kind::kParagraph, "one of many lines", {}});
    content_.note.body.push_back({NotePiece::Kind::kLink, "a broken link", "gone"});
    Run([](QDialog& window) {
        ClickOn(window, "a broken link");
        const int place = Page(window)->verticalScrollBar()->value();
        EXPECT_GT(place, 0);
        const QString before = Page(window)->document()->defaultStyleSheet();
        QPalette dark = window.palette();
        dark.setColor(QPalette::Base, Qt::black);
        dark.setColor(QPalette::Text, Qt::white);
        window.setPalette(dark);
        EXPECT_TRUE(QTest::qWaitFor([&] { return Page(window)->document()->defaultStyleSheet() != before; }));
        EXPECT_EQ(Page(window)->verticalScrollBar()->value(), place);
        EXPECT_TRUE(window.findChild<QLabel*>()->isVisible()) << "why the link leads nowhere";
    });
}

TEST_F(NoteWindowTest, CopiesWhatIsMarkedOrAllOfIt)
{
    Run([](QDialog& window) {
        QTest::mouseClick(Button(window, "&Copy"), Qt::LeftButton);
        EXPECT_EQ(QApplication::clipboard()->text(), Page(window)->toPlainText());
        Page(window)->setTextCursor(Page(window)->document()->find("stripes"));
        QTest::mouseClick(Button(window, "&Copy"), Qt::LeftButton);
        EXPECT_EQ(QApplication::clipboard()->text(), "stripes");
    });
}

TEST_F(NoteWindowTest, ClosesByButtonAndKey)
{
    for (const int key : {0, int(Qt::Key_Escape)}) {
        Run([&](QDialog& window) {
            if (key == 0)
                QTest::mouseClick(Button(window, "C&lose"), Qt::LeftButton);
            else
                QTest::keyClick(Page(window), Qt::Key(key));
            EXPECT_FALSE(window.isVisible());
        });
    }
}

}  // namespace
