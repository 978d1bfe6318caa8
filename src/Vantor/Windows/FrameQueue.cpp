#include "Vantor/Windows/FrameQueue.h"

#include "Vantor/Model/Visualizer.h"

#include <sys/socket.h>
#include <xcb/xcbext.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <limits>
#include <span>
#include <string_view>

namespace vantor {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 1s; // with a server that does not answer
constexpr int mostErrors = 30;

struct Free {
    void operator()(void *reply) const { std::free(reply); }
};
template <class Reply>
std::unique_ptr<Reply, Free> owned(Reply *reply) {
    return std::unique_ptr<Reply, Free>(reply);
}

/// One on the same computer, which shares its clock.
bool isLocal(xcb_connection_t *connection) {
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    return getsockname(xcb_get_file_descriptor(connection), reinterpret_cast<sockaddr *>(&address),
                       &length) == 0 &&
           address.ss_family == AF_UNIX;
}

bool hasWords(const xcb_setup_t &setup, std::uint8_t depth) {
    for (auto format = xcb_setup_pixmap_formats_iterator(&setup); format.rem; xcb_format_next(&format)) {
        if (format.data->depth == depth)
            return format.data->bits_per_pixel == 32;
    }
    return false;
}

bool isRgb(const xcb_setup_t &setup, xcb_visualid_t id) {
    for (auto screen = xcb_setup_roots_iterator(&setup); screen.rem; xcb_screen_next(&screen)) {
        for (auto depth = xcb_screen_allowed_depths_iterator(screen.data); depth.rem;
             xcb_depth_next(&depth)) {
            const std::span visuals(xcb_depth_visuals(depth.data),
                                    static_cast<std::size_t>(xcb_depth_visuals_length(depth.data)));
            const auto visual = std::ranges::find(visuals, id, &xcb_visualtype_t::visual_id);
            if (visual != visuals.end())
                return visual->red_mask == 0xff0000 && visual->green_mask == 0xff00 &&
                       visual->blue_mask == 0xff;
        }
    }
    return false;
}

/// xcb's own accessor takes the padding of its structure for a part of the message.
std::string_view nameOf(const xcb_sync_systemcounter_t &counter) {
    return {reinterpret_cast<const char *>(&counter.name_len + 1), counter.name_len};
}

std::int64_t toInteger(const xcb_sync_int64_t &value) {
    return (static_cast<std::int64_t>(value.hi) << 32) | value.lo;
}

xcb_sync_int64_t fromInteger(std::int64_t value) {
    return {static_cast<std::int32_t>(value >> 32), static_cast<std::uint32_t>(value)};
}

std::chrono::milliseconds sinceStart(std::chrono::steady_clock::time_point time) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
}

} // namespace

std::unique_ptr<FrameQueue> FrameQueue::make(xcb_window_t window) {
    std::unique_ptr<FrameQueue> queue(new FrameQueue);
    queue->m_connection.reset(xcb_connect(nullptr, nullptr));
    xcb_connection_t *const connection = queue->m_connection.get();
    if (xcb_connection_has_error(connection) || !isLocal(connection) || !queue->understandsPixels(window) ||
        !queue->findClock())
        return nullptr;
    queue->m_context = xcb_generate_id(connection);
    const std::uint32_t no = 0;
    xcb_create_gc(connection, queue->m_context, window, XCB_GC_GRAPHICS_EXPOSURES, &no);
    return queue;
}

bool FrameQueue::understandsPixels(xcb_window_t window) {
    xcb_connection_t *const connection = m_connection.get();
    const auto attributesAsked = xcb_get_window_attributes(connection, window);
    const auto geometryAsked = xcb_get_geometry(connection, window);
    const auto attributes = owned(xcb_get_window_attributes_reply(connection, attributesAsked, nullptr));
    const auto geometry = owned(xcb_get_geometry_reply(connection, geometryAsked, nullptr));
    if (!attributes || !geometry)
        return false; // the windows are on another display
    const xcb_setup_t &setup = *xcb_get_setup(connection);
    constexpr auto order =
        std::endian::native == std::endian::little ? XCB_IMAGE_ORDER_LSB_FIRST : XCB_IMAGE_ORDER_MSB_FIRST;
    m_depth = geometry->depth;
    return setup.image_byte_order == order && hasWords(setup, m_depth) && isRgb(setup, attributes->visual);
}

bool FrameQueue::findClock() {
    xcb_connection_t *const connection = m_connection.get();
    const xcb_query_extension_reply_t *const extension = xcb_get_extension_data(connection, &xcb_sync_id);
    if (!extension || !extension->present)
        return false;
    const auto greeting = xcb_sync_initialize(connection, XCB_SYNC_MAJOR_VERSION, XCB_SYNC_MINOR_VERSION);
    const auto listAsked = xcb_sync_list_system_counters(connection);
    if (!owned(xcb_sync_initialize_reply(connection, greeting, nullptr)))
        return false;
    const auto list = owned(xcb_sync_list_system_counters_reply(connection, listAsked, nullptr));
    if (!list)
        return false;
    for (auto counter = xcb_sync_list_system_counters_counters_iterator(list.get()); counter.rem;
         xcb_sync_systemcounter_next(&counter)) {
        if (nameOf(*counter.data) == "SERVERTIME")
            m_serverTime = counter.data->counter;
    }
    const auto asked = xcb_sync_query_counter(connection, m_serverTime);
    const auto time = owned(xcb_sync_query_counter_reply(connection, asked, nullptr));
    if (!time)
        return false;
    m_serverAhead = std::chrono::milliseconds(toInteger(time->counter_value)) - sinceStart(Clock::now());
    return true;
}

bool FrameQueue::isUsable() {
    const bool answers = isDone() || Clock::now() - m_asked < patience;
    return answers && m_errors < mostErrors && !xcb_connection_has_error(m_connection.get());
}

void FrameQueue::send(xcb_window_t window, int scale, const std::vector<QImage> &pictures) {
    if (!isDone())
        return;
    const Clock::time_point now = Clock::now();
    constexpr auto spacing =
        std::chrono::round<Clock::duration>(std::chrono::duration<double>(Visualizer::pictureSeconds));
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        if (i > 0)
            waitUntil(now + spacing * i);
        put(window, scale, pictures[i]);
    }
    m_question = xcb_get_input_focus(m_connection.get()).sequence;
    m_asked = now;
    xcb_flush(m_connection.get());
}

/// Whether what was sent last has been shown. Errors mean that the window was not yet or no longer there.
bool FrameQueue::isDone() {
    if (!m_question)
        return true;
    void *reply = nullptr;
    xcb_generic_error_t *error = nullptr;
    const bool isAnswered = xcb_poll_for_reply(m_connection.get(), *m_question, &reply, &error);
    static_cast<void>(owned(error));
    if (!isAnswered)
        return false;
    static_cast<void>(owned(reply));
    m_question.reset();
    const int before = m_errors;
    while (const auto event = owned(xcb_poll_for_queued_event(m_connection.get())))
        m_errors += event->response_type == 0;
    if (m_errors == before)
        m_errors = 0;
    return true;
}

void FrameQueue::waitUntil(Clock::time_point time) {
    const std::int64_t at = (sinceStart(time) + m_serverAhead).count();
    // A threshold that is never reached: it is enough that the server waits, nobody need be told.
    const xcb_sync_waitcondition_t condition{
        {m_serverTime, XCB_SYNC_VALUETYPE_ABSOLUTE, fromInteger(at), XCB_SYNC_TESTTYPE_POSITIVE_COMPARISON},
        fromInteger(std::numeric_limits<std::int64_t>::max())};
    xcb_sync_await(m_connection.get(), 1, &condition);
}

void FrameQueue::put(xcb_window_t window, int scale, const QImage &picture) {
    const int width = picture.width() * scale;
    m_pixels.clear();
    for (int y = 0; y < picture.height(); ++y) {
        const auto *const line = reinterpret_cast<const std::uint32_t *>(picture.constScanLine(y));
        const std::size_t row = m_pixels.size();
        for (int x = 0; x < picture.width(); ++x)
            m_pixels.insert(m_pixels.end(), static_cast<std::size_t>(scale), line[x]);
        m_pixels.resize(row + static_cast<std::size_t>(width * scale));
        for (int i = 1; i < scale; ++i)
            std::copy_n(m_pixels.begin() + static_cast<std::ptrdiff_t>(row), width,
                        m_pixels.begin() + static_cast<std::ptrdiff_t>(row) + i * width);
    }
    xcb_put_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, m_context,
                  static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(picture.height() * scale), 0,
                  0, 0, m_depth, static_cast<std::uint32_t>(m_pixels.size() * sizeof m_pixels[0]),
                  reinterpret_cast<const std::uint8_t *>(m_pixels.data()));
}

} // namespace vantor
