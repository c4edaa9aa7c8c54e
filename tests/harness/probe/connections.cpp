#include "tests/harness/probe/connections.h"

#include <QJsonObject>
#include <QMetaObject>

#include <dlfcn.h>
#include <link.h>

#include <mutex>

namespace {

constexpr std::size_t mostKept = 200;
constexpr const char* connectSymbol = "_ZN7QObject7connectEPKS_PKcS1_S3_N2Qt14ConnectionTypeE";
using Connect = QMetaObject::Connection (*)(const QObject*, const char*, const QObject*, const char*,
                                            Qt::ConnectionType);

struct Kept
{
    std::mutex guard; ///< connections may be made on any thread
    QJsonArray rows;
};

/// Never destroyed: the program may still connect while its statics go.
Kept& kept()
{
    static Kept* const one = new Kept;
    return *one;
}

QString className(const QObject* object)
{
    return object == nullptr ? QString() : QString::fromLatin1(object->metaObject()->className());
}

/// Without the code digit that SIGNAL() and SLOT() put in front.
QString signature(const char* coded)
{
    return coded == nullptr || *coded == '\0' ? QString() : QString::fromLatin1(coded + 1);
}

/// Whether the code at this address belongs to the program itself, not to a library.
bool isOfProgram(void* address)
{
    Dl_info unused{};
    link_map* object = nullptr;
    if (dladdr1(address, &unused, reinterpret_cast<void**>(&object), RTLD_DL_LINKMAP) == 0 ||
        object == nullptr)
        return false;
    return object->l_name[0] == '\0';
}

void keep(const QObject* sender, const char* signal, const QObject* receiver, const char* slot,
          Qt::ConnectionType type, bool connected)
{
    Kept& all = kept();
    const std::lock_guard<std::mutex> lock(all.guard);
    if (static_cast<std::size_t>(all.rows.size()) >= mostKept)
        return;
    all.rows.append(QJsonObject{
        {"sender", className(sender)},
        {"senderName", sender == nullptr ? QString() : sender->objectName()},
        {"signal", signature(signal)},
        {"receiver", className(receiver)},
        {"receiverName", receiver == nullptr ? QString() : receiver->objectName()},
        {"slot", signature(slot)},
        {"type", static_cast<int>(type)},
        {"connected", connected},
        {"self", sender == receiver},
    });
}

} // namespace

// Found before Qt's own, by the program's calls and by Qt's.
QMetaObject::Connection QObject::connect(const QObject* sender, const char* signal, const QObject* receiver,
                                         const char* member, Qt::ConnectionType type)
{
    static const auto original = reinterpret_cast<Connect>(dlsym(RTLD_NEXT, connectSymbol));
    QMetaObject::Connection connection = original(sender, signal, receiver, member, type);
    if (isOfProgram(__builtin_return_address(0)))
        keep(sender, signal, receiver, member, type, static_cast<bool>(connection));
    return connection;
}

namespace connections {

QJsonArray made()
{
    const std::lock_guard<std::mutex> lock(kept().guard);
    return kept().rows;
}

} // namespace connections
