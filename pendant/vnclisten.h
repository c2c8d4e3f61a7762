#pragma once

#include <QHostAddress>
#include <QString>

/*
 * Qt's VNC platform serves the screen without a password on every network interface, and its
 * only setting is the port. The shell moves that listening socket onto one address (loopback
 * unless the operator asks otherwise) right after the platform opened it and before the event loop
 * could accept a single connection.
 */
namespace vnclisten {

// True when the application runs on Qt's VNC platform.
bool isVncPlatform();

// Lets the VNC platform open its socket (it does so from a queued call) and moves every TCP socket
// of this process that listens on a wildcard address onto `address`, same port. Returns the
// listeners now on `address` ("127.0.0.1:5900", ...); empty with `error` set when none was found
// or one could not be moved (a socket that could not be moved no longer listens anywhere).
QStringList restrictListeners(const QHostAddress &address, QString *error);

// Local addresses of the TCP sockets this process listens on, as "ADDR:PORT" ("[::]:5900" for
// IPv6), from the sockets themselves.
QStringList listeningSockets();

} // namespace vnclisten
