#include "vnclisten.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QGuiApplication>

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vnclisten {

namespace {

struct Listener
{
    int fd = -1;
    sockaddr_storage address{};
};

QString describe(const sockaddr_storage &a)
{
    char text[INET6_ADDRSTRLEN] = {0};
    if (a.ss_family == AF_INET) {
        const auto *in = reinterpret_cast<const sockaddr_in *>(&a);
        inet_ntop(AF_INET, &in->sin_addr, text, sizeof text);
        return QStringLiteral("%1:%2").arg(QString::fromLatin1(text)).arg(ntohs(in->sin_port));
    }
    const auto *in6 = reinterpret_cast<const sockaddr_in6 *>(&a);
    inet_ntop(AF_INET6, &in6->sin6_addr, text, sizeof text);
    return QStringLiteral("[%1]:%2").arg(QString::fromLatin1(text)).arg(ntohs(in6->sin6_port));
}

bool isWildcard(const sockaddr_storage &a)
{
    if (a.ss_family == AF_INET)
        return reinterpret_cast<const sockaddr_in *>(&a)->sin_addr.s_addr == htonl(INADDR_ANY);
    if (a.ss_family == AF_INET6)
        return IN6_IS_ADDR_UNSPECIFIED(&reinterpret_cast<const sockaddr_in6 *>(&a)->sin6_addr);
    return false;
}

quint16 portOf(const sockaddr_storage &a)
{
    if (a.ss_family == AF_INET)
        return ntohs(reinterpret_cast<const sockaddr_in *>(&a)->sin_port);
    return ntohs(reinterpret_cast<const sockaddr_in6 *>(&a)->sin6_port);
}

// Every TCP socket of this process in the listening state.
QList<Listener> listeners()
{
    QList<Listener> out;
    const QStringList entries = QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::Files | QDir::System);
    for (const QString &entry : entries) {
        bool ok = false;
        const int fd = entry.toInt(&ok);
        struct stat st;
        if (!ok || fstat(fd, &st) != 0 || !S_ISSOCK(st.st_mode))
            continue;
        int value = 0;
        socklen_t length = sizeof value;
        if (getsockopt(fd, SOL_SOCKET, SO_TYPE, &value, &length) != 0 || value != SOCK_STREAM)
            continue;
        length = sizeof value;
        if (getsockopt(fd, SOL_SOCKET, SO_ACCEPTCONN, &value, &length) != 0 || value == 0)
            continue;
        Listener l;
        l.fd = fd;
        length = sizeof l.address;
        if (getsockname(fd, reinterpret_cast<sockaddr *>(&l.address), &length) != 0)
            continue;
        if (l.address.ss_family != AF_INET && l.address.ss_family != AF_INET6)
            continue;
        out.append(l);
    }
    return out;
}

QString systemError(const char *what)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno)));
}

// Replaces the socket behind `fd` by one listening on `address`:`port`, under the same descriptor
// number, so the platform's socket notifier and accept() carry on with the new one.
bool rebind(int fd, const QHostAddress &address, quint16 port, QString *error)
{
    sockaddr_storage target{};
    socklen_t targetLength = 0;
    if (address.protocol() == QAbstractSocket::IPv4Protocol) {
        auto *in = reinterpret_cast<sockaddr_in *>(&target);
        in->sin_family = AF_INET;
        in->sin_port = htons(port);
        in->sin_addr.s_addr = htonl(address.toIPv4Address());
        targetLength = sizeof(sockaddr_in);
    } else {
        auto *in6 = reinterpret_cast<sockaddr_in6 *>(&target);
        in6->sin6_family = AF_INET6;
        in6->sin6_port = htons(port);
        const Q_IPV6ADDR bytes = address.toIPv6Address();
        std::memcpy(&in6->sin6_addr, bytes.c, sizeof bytes.c);
        targetLength = sizeof(sockaddr_in6);
    }

    const int statusFlags = fcntl(fd, F_GETFL);
    const int descriptorFlags = fcntl(fd, F_GETFD);
    // The wildcard socket goes first (it holds the port); a placeholder keeps the descriptor
    // number taken meanwhile so that nothing else can be handed it.
    const int placeholder = socket(target.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (placeholder < 0) {
        *error = systemError("socket");
        return false;
    }
    if (dup2(placeholder, fd) < 0) {
        *error = systemError("dup2");
        close(placeholder);
        return false;
    }
    close(placeholder);

    const int fresh = socket(target.ss_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fresh < 0) {
        *error = systemError("socket");
        return false;
    }
    const int on = 1;
    setsockopt(fresh, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (bind(fresh, reinterpret_cast<sockaddr *>(&target), targetLength) != 0) {
        *error = systemError("bind");
        close(fresh);
        return false;
    }
    if (listen(fresh, 50) != 0) {
        *error = systemError("listen");
        close(fresh);
        return false;
    }
    if (statusFlags >= 0)
        fcntl(fresh, F_SETFL, statusFlags);
    const int moved = dup2(fresh, fd);
    close(fresh);
    if (moved < 0) {
        *error = systemError("dup2");
        return false;
    }
    if (descriptorFlags >= 0)
        fcntl(fd, F_SETFD, descriptorFlags);
    return true;
}

} // namespace

bool isVncPlatform()
{
    return QGuiApplication::platformName() == QLatin1String("vnc");
}

QStringList restrictListeners(const QHostAddress &address, QString *error)
{
    // The platform opens its server from a queued call: run it now, before any event is polled.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);

    QStringList moved;
    for (const Listener &l : listeners()) {
        if (!isWildcard(l.address))
            continue;
        const quint16 port = portOf(l.address);
        QString why;
        if (!rebind(l.fd, address, port, &why)) {
            const QString where = address.protocol() == QAbstractSocket::IPv6Protocol
                                      ? QStringLiteral("[%1]:%2").arg(address.toString()).arg(port)
                                      : QStringLiteral("%1:%2").arg(address.toString()).arg(port);
            *error = QStringLiteral("cannot listen on %1 (%2)").arg(where, why);
            return {};
        }
        sockaddr_storage now{};
        socklen_t length = sizeof now;
        getsockname(l.fd, reinterpret_cast<sockaddr *>(&now), &length);
        moved.append(describe(now));
    }
    if (moved.isEmpty())
        *error = QStringLiteral("the VNC platform opened no socket");
    return moved;
}

QStringList listeningSockets()
{
    QStringList out;
    for (const Listener &l : listeners())
        out.append(describe(l.address));
    return out;
}

} // namespace vnclisten
