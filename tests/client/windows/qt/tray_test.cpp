// tests/client/windows/qt/tray_test.cpp: the client's icon in a real system tray, which is the test's own.
// Only on an X server; elsewhere there is no tray that a test could be.
#include <QGuiApplication>
#include <QMenu>
#include <QMenuBar>
#include <QSystemTrayIcon>
#include <array>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>
#include <xcb/xcb.h>

#include "client/windows/qt/client_window.h"
#include "tests/client/windows/qt/window_fixture.h"

namespace {

template <typename Reply> using Freed = std::unique_ptr<Reply, decltype(&std::free)>;

// A system tray as desktops on X have it: who owns a certain selection is asked to dock icons.
class Tray {
public:
    Tray() : connection_(xcb_connect(nullptr, nullptr))
    {
        const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        window_ = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen.root, 0, 0, 64, 64, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual, 0, nullptr);
        xcb_map_window(connection_, window_);
        const xcb_atom_t selection = Atom("_NET_SYSTEM_TRAY_S0");
        xcb_set_selection_owner(connection_, window_, selection, XCB_CURRENT_TIME);
        SendMessage(screen.root, Atom("MANAGER"), {XCB_CURRENT_TIME, selection, window_, 0, 0},
                    XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    }
    ~Tray() { xcb_disconnect(connection_); }
    Tray(const Tray&) = delete;
    Tray& operator=(const Tray&) = delete;

    // Takes in the icon that asked for it; false while none has.
    bool HasIcon()
    {
        const xcb_atom_t opcode = Atom("_NET_SYSTEM_TRAY_OPCODE");
        while (const Freed<xcb_generic_event_t> event{xcb_poll_for_event(connection_), std::free}) {
            const auto* const message = reinterpret_cast<const xcb_client_message_event_t*>(event.get());
            if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE || message->type != opcode ||
                message->data.data32[1] != kRequestDock)
                continue;
            icon_ = message->data.data32[2];
            xcb_change_save_set(connection_, XCB_SET_MODE_INSERT, icon_);  // it outlives the tray
            xcb_reparent_window(connection_, icon_, window_, 0, 0);
            xcb_map_window(connection_, icon_);
            xcb_flush(connection_);
        }
        return icon_ != XCB_NONE;
    }

private:
    static constexpr uint32_t kRequestDock = 0;

    xcb_atom_t Atom(std::string_view name)
    {
        const xcb_intern_atom_cookie_t asked =
            xcb_intern_atom(connection_, 0, static_cast<uint16_t>(name.size()), name.data());
        return Freed<xcb_intern_atom_reply_t>(xcb_intern_atom_reply(connection_, asked, nullptr), std::free)->atom;
    }

    void SendMessage(xcb_window_t to, xcb_atom_t type, std::array<uint32_t, 5> data, uint32_t mask)
    {
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = to;
        event.type = type;
        std::copy(data.begin(), data.end(), event.data.data32);
        xcb_send_event(connection_, 0, to, mask, reinterpret_cast<const char*>(&event));
        xcb_flush(connection_);
    }

    xcb_connection_t* connection_;
    xcb_window_t window_ = XCB_NONE;
    xcb_window_t icon_ = XCB_NONE;
};

class ClientInTray : public WindowFixture {
protected:
    void SetUp() override
    {
        if (QGuiApplication::platformName() != "xcb")
            GTEST_SKIP() << "there is no X server to be a tray of";
    }
    void Run(const std::function<void(QMainWindow& window)>& use)
    {
        QTimer::singleShot(0, [&use] {
            use(ClientWindowShown());
            pavex::QtFrontEnd::CloseAll();
        });
        pavex::QtFrontEnd().RunClient({"Search...", [] {}, home_ / "client.log"});
    }
};

TEST_F(ClientInTray, DocksItsIconAndEndsWithIt)
{
    Tray tray;
    bool docked = false;
    Run([&](QMainWindow& window) {
        docked = QTest::qWaitFor([&] { return tray.HasIcon(); });
        EXPECT_TRUE(window.findChild<QSystemTrayIcon*>()->isVisible());
        window.menuBar()->actions().front()->menu()->actions().back()->trigger();  // the icon goes before the window
        EXPECT_FALSE(window.findChild<QSystemTrayIcon*>()->isVisible());
    });
    EXPECT_TRUE(docked);
}

TEST_F(ClientInTray, DocksItsIconAlsoWhenTheTrayComesLater)
{
    ASSERT_TRUE(QTest::qWaitFor([] { return !QSystemTrayIcon::isSystemTrayAvailable(); }));
    std::optional<Tray> tray;
    Run([&](QMainWindow& window) {
        EXPECT_FALSE(window.findChild<QSystemTrayIcon*>()->isVisible());
        tray.emplace();
        EXPECT_TRUE(QTest::qWaitFor([&] { return tray->HasIcon(); }));
    });
}

}  // namespace
