#include "tests/support/Connection.h"

#include "tests/support/ImageEdit.h"

#include <stdexcept>

namespace {

constexpr std::uint32_t kScratchBytes = 1u << 20;
ConnectionWatch g_watch;

template <class Function>
void Load(HMODULE library, const char* name, Function*& function) {
    function = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
    if (!function) throw std::runtime_error(std::string(name) + " is missing");
}

Connection LoadConnection() {
    HMODULE library = LoadLibraryA("connectvesk.dll");
    if (!library) throw std::runtime_error("connectvesk.dll cannot be loaded");
    Connection calls{};
    Load(library, "qmx_open_scratch", calls.openScratch);
    Load(library, "qmx_close_scratch", calls.closeScratch);
    Load(library, "qmx_ctor_primecb", calls.openMessage);
    Load(library, "qmx_dtor_primecb", calls.closeMessage);
    Load(library, "qmx_start_msg", calls.start);
    Load(library, "qmx_add_data", calls.add);
    Load(library, "qmx_get_data", calls.get);
    return calls;
}

int Refuse(QmxError* error) {
    *error = {};
    error->code = kQmxNoMemory;
    return 0;
}

int OpenScratch(void** scratch, std::uint32_t size, QmxError* error) {
    ++g_watch.scratchOpened;
    g_watch.scratchSize = size;
    return g_watch.failOpenScratch ? Refuse(error) : Connection::Loaded().openScratch(scratch, size, error);
}
int CloseScratch(void** scratch, QmxError* error) {
    ++g_watch.scratchClosed;
    return Connection::Loaded().closeScratch(scratch, error);
}
int OpenMessage(void** message, QmxError* error) {
    ++g_watch.messagesOpened;
    return g_watch.failOpenMessage ? Refuse(error) : Connection::Loaded().openMessage(message, error);
}
int CloseMessage(void** message, QmxError* error) {
    ++g_watch.messagesClosed;
    return Connection::Loaded().closeMessage(message, error);
}
int Start(void* message, void* scratch, QmxError* error) {
    g_watch.building.clear();
    return g_watch.failStart ? Refuse(error) : Connection::Loaded().start(message, scratch, error);
}
int Add(void* message, std::uint32_t tag, std::uint32_t count, const QmxDatum* data, QmxError* error) {
    if (g_watch.failTag == tag) return Refuse(error);
    for (std::uint32_t i = 0; i < count; ++i) {
        // An absent value has no bytes; an empty one must not point anywhere either.
        const bool absent = !data[i].data || data[i].length == 0;
        const bool wellFormed = (data[i].data == nullptr) == (data[i].length == 0);
        g_watch.building.push_back(
            {tag, absent ? (wellFormed ? "null" : "ill-formed") : std::string(data[i].data, data[i].length)});
    }
    return Connection::Loaded().add(message, tag, count, data, error);
}

} // namespace

std::string Dump(const Fields& fields) {
    std::string text;
    for (const Field& field : fields)
        text += std::to_string(field.tag) + "=" + field.text + ";";
    return text;
}

const Connection& Connection::Loaded() {
    static const Connection connection = LoadConnection();
    return connection;
}

BuiltMessage::BuiltMessage(const Fields& fields) {
    const Connection& calls = Connection::Loaded();
    QmxError error{};
    bool built = calls.openScratch(&m_scratch, kScratchBytes, &error) && calls.openMessage(&m_message, &error)
                 && calls.start(m_message, m_scratch, &error);
    for (std::size_t i = 0; i < fields.size() && built;) {
        std::vector<QmxDatum> values;
        const std::uint32_t tag = fields[i].tag;
        for (; i < fields.size() && fields[i].tag == tag; ++i)
            values.push_back({fields[i].text.data(), static_cast<std::uint32_t>(fields[i].text.size())});
        built =
            calls.add(m_message, tag, static_cast<std::uint32_t>(values.size()), values.data(), &error) != 0;
    }
    if (!built) throw std::runtime_error(std::string("message not built: ") + error.text);
}

BuiltMessage::~BuiltMessage() {
    QmxError error{};
    Connection::Loaded().closeMessage(&m_message, &error);
    Connection::Loaded().closeScratch(&m_scratch, &error);
}

ConnectionWatch& ConnectionWatch::Current() {
    return g_watch;
}

void ConnectionWatch::Install(HMODULE plugin) {
    Connection::Loaded();
    g_watch = {};
    constexpr const char* library = "connectvesk.dll";
    ReplaceImport(plugin, library, "qmx_open_scratch", OpenScratch);
    ReplaceImport(plugin, library, "qmx_close_scratch", CloseScratch);
    ReplaceImport(plugin, library, "qmx_ctor_primecb", OpenMessage);
    ReplaceImport(plugin, library, "qmx_dtor_primecb", CloseMessage);
    ReplaceImport(plugin, library, "qmx_start_msg", Start);
    ReplaceImport(plugin, library, "qmx_add_data", Add);
}
