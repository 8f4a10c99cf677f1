#include "platform/system/machine.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace quillary::system {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

// What a window manager offers to programs that ask on behalf of another one.
class Display {
public:
    Display() : connection_(::xcb_connect(nullptr, nullptr)) {
        if (::xcb_connection_has_error(connection_) == 0)
            root_ = ::xcb_setup_roots_iterator(::xcb_get_setup(connection_)).data->root;
    }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;
    ~Display() { ::xcb_disconnect(connection_); }

    // Sends the request to each top-level window of the process.
    bool Ask(ProcessId process, const char* request) {
        if (root_ == XCB_NONE)
            return false;
        bool found = false;
        for (const std::uint32_t window : Property(root_, "_NET_CLIENT_LIST", XCB_ATOM_WINDOW)) {
            const auto owner = Property(window, "_NET_WM_PID", XCB_ATOM_CARDINAL);
            if (owner.empty() || owner.front() != static_cast<std::uint32_t>(process))
                continue;
            found = true;
            xcb_client_message_event_t event{};
            event.response_type = XCB_CLIENT_MESSAGE;
            event.format = 32;
            event.window = window;
            event.type = Atom(request);
            // _NET_CLOSE_WINDOW: time, source; _NET_ACTIVE_WINDOW: source, time. 2: a tool acting for the
            // user.
            const bool closing = std::strcmp(request, "_NET_CLOSE_WINDOW") == 0;
            event.data.data32[closing ? 1 : 0] = 2;
            ::xcb_send_event(connection_, 0, root_,
                             XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                             reinterpret_cast<const char*>(&event));
        }
        // A question that needs an answer: closing the connection before the server has read the requests
        // would lose them.
        const Reply<xcb_get_input_focus_reply_t> answered(
            ::xcb_get_input_focus_reply(connection_, ::xcb_get_input_focus(connection_), nullptr));
        return found;
    }

private:
    xcb_atom_t Atom(const char* name) {
        const auto cookie =
            ::xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
        const Reply<xcb_intern_atom_reply_t> reply(::xcb_intern_atom_reply(connection_, cookie, nullptr));
        return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
    }

    std::vector<std::uint32_t> Property(xcb_window_t window, const char* name, xcb_atom_t type) {
        const auto cookie = ::xcb_get_property(connection_, 0, window, Atom(name), type, 0, 4096);
        const Reply<xcb_get_property_reply_t> reply(::xcb_get_property_reply(connection_, cookie, nullptr));
        if (!reply || reply->format != 32)
            return {};
        const auto* values = static_cast<const std::uint32_t*>(::xcb_get_property_value(reply.get()));
        return {values, values + ::xcb_get_property_value_length(reply.get()) / 4};
    }

    xcb_connection_t* connection_;
    xcb_window_t root_ = XCB_NONE;
};

} // namespace

bool ActivateWindowsOf(ProcessId process) {
    return Display().Ask(process, "_NET_ACTIVE_WINDOW");
}
bool CloseWindowsOf(ProcessId process) {
    return Display().Ask(process, "_NET_CLOSE_WINDOW");
}

} // namespace quillary::system
