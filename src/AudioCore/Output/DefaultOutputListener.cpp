#include "AudioCore/Output/DefaultOutputListener_p.h"

#include <pulse/pulseaudio.h>

namespace vantor {

static QString property(const pa_sink_info &sink, const char *name) {
    return QString::fromUtf8(pa_proplist_gets(sink.proplist, name));
}

static QString transportOf(const pa_sink_info &sink) {
    const QString bus = property(sink, PA_PROP_DEVICE_BUS);
    const bool isHDMI = (sink.active_port && sink.active_port->type == PA_DEVICE_PORT_TYPE_HDMI) ||
                        property(sink, PA_PROP_DEVICE_PROFILE_NAME).startsWith(QLatin1String("hdmi"));
    if (sink.flags & PA_SINK_NETWORK)
        return QStringLiteral("Network");
    if (bus == QLatin1String("bluetooth") ||
        property(sink, PA_PROP_DEVICE_API).startsWith(QLatin1String("bluez")))
        return QStringLiteral("Bluetooth");
    if (isHDMI)
        return QStringLiteral("HDMI");
    if (bus == QLatin1String("usb"))
        return QStringLiteral("USB");
    if (bus == QLatin1String("firewire"))
        return QStringLiteral("FireWire");
    return !bus.isEmpty() || (sink.flags & PA_SINK_HARDWARE) ? QStringLiteral("Built-in")
                                                             : QStringLiteral("Virtual");
}

static OutputDeviceDescription describe(const pa_sink_info &sink) {
    return {.id = sink.index,
            .key = QString::fromUtf8(sink.name),
            .name = QString::fromUtf8(sink.description ? sink.description : sink.name),
            .transport = transportOf(sink),
            .nominalSampleRate = static_cast<double>(sink.sample_spec.rate),
            .latencySeconds = static_cast<double>(sink.configured_latency) * 1e-6};
}

// What the library calls back, on its own thread.
struct DefaultOutputListener::Callbacks {
    static DefaultOutputListener &self(void *data) { return *static_cast<DefaultOutputListener *>(data); }

    static void changed(pa_context *, pa_subscription_event_type_t, std::uint32_t, void *data) {
        self(data).ask();
    }
    static void server(pa_context *, const pa_server_info *info, void *data) {
        self(data).m_defaultKey = info ? QString::fromUtf8(info->default_sink_name) : QString();
    }
    static void sink(pa_context *, const pa_sink_info *info, int, void *data) {
        Outputs &answers = self(data).m_answers;
        if (!info) {
            self(data).answered();
            return;
        }
        answers.devices.push_back(describe(*info));
        if (answers.devices.back().key == self(data).m_defaultKey)
            answers.defaultDevice = info->index;
    }
};

DefaultOutputListener::DefaultOutputListener(std::function<void(const Outputs &)> onOutputs)
    : m_onOutputs(std::move(onOutputs)), m_server(std::make_shared<PulseServer>()) {
    m_server->start([this](bool connected) { connectionChanged(connected); });
}

DefaultOutputListener::~DefaultOutputListener() {
    const PulseServer::Lock lock(*m_server);
    m_server->forgetWatcher();
    dropQuestions();
    if (pa_context *const context = m_server->context())
        pa_context_set_subscribe_callback(context, nullptr, nullptr);
}

void DefaultOutputListener::connectionChanged(bool connected) {
    if (!connected) {
        dropQuestions();
        tell({});
        return;
    }
    pa_context *const context = m_server->context();
    pa_context_set_subscribe_callback(context, Callbacks::changed, this);
    constexpr auto wanted =
        static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SERVER);
    if (pa_operation *const subscribed = pa_context_subscribe(context, wanted, nullptr, nullptr))
        pa_operation_unref(subscribed);
    ask();
}

// The answers come in this order. What changes meanwhile is asked for afterwards, so that many changes in a
// row cannot hold back every answer.
void DefaultOutputListener::ask() {
    m_asksAgain = m_questions.back() != nullptr;
    if (m_asksAgain)
        return;
    m_answers = {.hasServer = true, .devices = {}, .defaultDevice = std::nullopt};
    m_questions = {pa_context_get_server_info(m_server->context(), Callbacks::server, this),
                   pa_context_get_sink_info_list(m_server->context(), Callbacks::sink, this)};
}

void DefaultOutputListener::answered() {
    tell(m_answers);
    dropQuestions();
    if (m_asksAgain)
        ask();
}

void DefaultOutputListener::dropQuestions() {
    for (pa_operation *&question : m_questions) {
        if (!question)
            continue;
        pa_operation_cancel(question);
        pa_operation_unref(std::exchange(question, nullptr));
    }
}

void DefaultOutputListener::tell(const Outputs &outputs) {
    QMetaObject::invokeMethod(&m_mainThread, [this, outputs] { m_onOutputs(outputs); }, Qt::QueuedConnection);
}

} // namespace vantor
