#include "widgets/WindowVisibility.h"

#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QWidget>
#include <QWindow>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace sonotrace {

namespace {

constexpr std::uint8_t kSentByAnotherClient = 0x80; // a flag in an event's type

void askForVisibility(xcb_connection_t* connection, xcb_window_t window) {
    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };
    const std::unique_ptr<xcb_get_window_attributes_reply_t, Free> attributes(
        xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window), nullptr));
    if (!attributes)
        return;
    const std::uint32_t mask = attributes->your_event_mask | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &mask);
}

} // namespace

WindowVisibility::WindowVisibility() {
    // Other platforms answer for the interface too, without a connection behind it.
    if (QGuiApplication::platformName() != "xcb")
        return;
    qGuiApp->installEventFilter(this);
    qGuiApp->installNativeEventFilter(this);
}

bool WindowVisibility::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::PlatformSurface || !watched->isWindowType())
        return false;
    if (static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() ==
        QPlatformSurfaceEvent::SurfaceCreated) {
        askForVisibility(qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection(),
                         static_cast<xcb_window_t>(static_cast<QWindow*>(watched)->winId()));
    }
    return false;
}

/// A window that is seen again is told so before it is told to paint.
bool WindowVisibility::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
    const auto* event = static_cast<const xcb_visibility_notify_event_t*>(message);
    if ((event->response_type & ~kSentByAnotherClient) != XCB_VISIBILITY_NOTIFY)
        return false;
    if (QWidget* window = QWidget::find(event->window))
        window->setUpdatesEnabled(event->state != XCB_VISIBILITY_FULLY_OBSCURED);
    return false;
}

} // namespace sonotrace
