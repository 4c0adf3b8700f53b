// tests/client/windows/qt/keys_test.cpp: the window by keyboard: Return, Escape, Tab and letters.
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <set>

#include "settings/settings.h"
#include "tests/client/windows/qt/window_fixture.h"

namespace {

class KeysInWindow : public WindowFixture {
protected:
    KeysInWindow()
    {
        SetIni("GDSIndexEnabled", "1");
        SaveDatabases(2);
    }
    // The controls that Tab goes through, from the first one until it comes round.
    std::vector<int> TabOrder(Qt::Key key = Qt::Key_Tab)
    {
        std::vector<int> order;
        for (int control = Focus(); order.empty() || control != order.front(); control = Focus()) {
            order.push_back(control);
            if (order.size() > 50)
                break;
            Key(key);
        }
        return order;
    }
    QString Letter(const QString& text) { return text.mid(text.indexOf('&') + 1, 1).toLower(); }
};

TEST_F(KeysInWindow, ReturnIsOkFromAFieldABoxAndTheList)
{
    for (const int from : {kEditFrequency, kCheckIdle, kListDatabases}) {
        SCOPED_TRACE(from);
        EXPECT_EQ(Open([&] {
                      Widget(from)->setFocus();
                      Key(Qt::Key_Return);
                      EXPECT_FALSE(Window().isVisible());
                  }),
                  kButtonOk);
    }
}

TEST_F(KeysInWindow, EnterOfTheKeypadIsReturn)
{
    EXPECT_EQ(Open([&] { Key(Qt::Key_Enter, Qt::KeypadModifier); }), kButtonOk);
}

TEST_F(KeysInWindow, ReturnOnAButtonPressesThatButton)
{
    EXPECT_EQ(Open([&] {
                  Widget(kButtonRemove)->setFocus();
                  Key(Qt::Key_Return);
                  EXPECT_EQ(Model(kListDatabases).entries.size(), 1U);
                  EXPECT_TRUE(Window().isVisible());
                  Widget(kButtonCancel)->setFocus();
                  Key(Qt::Key_Return);
              }),
              kButtonCancel);
}

TEST_F(KeysInWindow, OkIsTheDefaultButton)
{
    Open([&] { EXPECT_TRUE(The<QPushButton>(kButtonOk)->isDefault()); });
}

TEST_F(KeysInWindow, EscapeIsCancel)
{
    const std::string before = IniFile();
    EXPECT_EQ(Open([&] {
                  Click(kCheckIdle);
                  Key(Qt::Key_Escape);
                  EXPECT_FALSE(Window().isVisible());
              }),
              kButtonCancel);
    EXPECT_EQ(IniFile(), before);
}

TEST_F(KeysInWindow, ClosingTheWindowIsCancel)
{
    const std::string before = IniFile();
    EXPECT_EQ(Open([&] {
                  Click(kCheckIdle);
                  EXPECT_TRUE(Window().close());
              }),
              kButtonCancel);
    EXPECT_EQ(IniFile(), before);
}

TEST_F(KeysInWindow, TabGoesFromTopToBottomAndRound)
{
    const std::vector<int> expected = {kCheckEnabled, kListDatabases, kButtonAdd,       kButtonRemove, kCheckEncrypted,
                                       kCheckDrafts,  kCheckHistory,  kCheckDiscussion, kCheckIdle,    kEditFrequency,
                                       kCheckReindex, kButtonOk,      kButtonCancel};
    Open([&] {
        EXPECT_EQ(TabOrder(), expected);  // Apply is disabled
        std::vector<int> back = TabOrder(Qt::Key_Backtab);
        std::reverse(back.begin() + 1, back.end());
        EXPECT_EQ(back, expected);
        Click(kCheckIdle);
        Widget(kCheckEnabled)->setFocus();
        EXPECT_EQ(TabOrder().back(), kButtonApply);
    });
}

TEST_F(KeysInWindow, TabPassesOverWhatIsDisabledAndHidden)
{
    SetIni("GDSIndexEnabled", "0");
    Open([&] { EXPECT_EQ(TabOrder(), (std::vector<int>{kCheckEnabled, kButtonOk, kButtonCancel})); });
    SetIni("GDSIndexEnabled", "1");
    SetIni("AdminGDSLock", "1");
    Open([&] {
        const std::vector<int> order = TabOrder();
        EXPECT_EQ(std::count(order.begin(), order.end(), kButtonAdd), 0);
        EXPECT_EQ(std::count(order.begin(), order.end(), kListDatabases), 1);
    });
}

TEST_F(KeysInWindow, TheFocusStartsAtTheTop)
{
    Open([&] { EXPECT_EQ(Focus(), kCheckEnabled); });
}

TEST_F(KeysInWindow, AltAndItsLetterTogglesEachBox)
{
    SetIni("GoogleSkipLegal", "1");
    Open([&] {
        for (const int id : {kCheckEncrypted, kCheckDrafts, kCheckHistory, kCheckDiscussion, kCheckIdle, kCheckReindex,
                             kCheckEnabled}) {
            const auto* const box = The<QCheckBox>(id);
            const unsigned int before = Model(id).checked;
            ASSERT_TRUE(box->text().contains('&')) << box->text().toStdString();
            QTest::keyClick(&Window(), Letter(box->text()).at(0).toLatin1(), Qt::AltModifier);
            EXPECT_TRUE(QTest::qWaitFor([&] { return Model(id).checked != before; })) << box->text().toStdString();
        }
    });
}

TEST_F(KeysInWindow, AltAndTheLetterOfALabelLeadsToWhatItNames)
{
    Open([&] {
        for (const auto& [label, named] :
             std::map<int, int>{{kLabelDatabases, kListDatabases}, {kLabelFrequency, kEditFrequency}}) {
            QTest::keyClick(&Window(), Letter(The<QLabel>(label)->text()).at(0).toLatin1(), Qt::AltModifier);
            EXPECT_EQ(Focus(), named);
        }
    });
}

TEST_F(KeysInWindow, AltAndItsLetterPressesAButton)
{
    Open([&] {
        QTest::keyClick(&Window(), Letter(The<QPushButton>(kButtonRemove)->text()).at(0).toLatin1(), Qt::AltModifier);
        EXPECT_TRUE(QTest::qWaitFor([&] { return Model(kListDatabases).entries.size() == 1; }));
    });
}

TEST_F(KeysInWindow, NoLetterIsGivenTwice)
{
    Open([&] {
        std::multiset<QString> letters;
        for (const QAbstractButton* const button : Window().findChildren<QAbstractButton*>()) {
            if (button->text().contains('&'))
                letters.insert(Letter(button->text()));
        }
        for (const int label : {kLabelDatabases, kLabelFrequency})
            letters.insert(Letter(The<QLabel>(label)->text()));
        EXPECT_EQ(letters.size(), 12U);
        EXPECT_EQ(std::set<QString>(letters.begin(), letters.end()).size(), letters.size());
    });
}

TEST_F(KeysInWindow, ControlsHaveAccessibleNames)
{
    Open([&] {
        EXPECT_EQ(Widget(kListDatabases)->accessibleName(), "Databases to index:");
        EXPECT_EQ(Widget(kEditFrequency)->accessibleName(), "Look for changes every");
        EXPECT_EQ(Widget(kEditFrequency)->accessibleDescription(), "minutes");
    });
}

}  // namespace
