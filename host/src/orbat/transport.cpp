#include <orbat/lineendpoint.h>
#include <orbat/transport.h>

namespace orbat {

Transport::Transport(QObject *parent) : QObject(parent) {}

Transport::~Transport() = default;

LineEndpoint::LineEndpoint(QObject *parent) : QObject(parent) {}

LineEndpoint::~LineEndpoint() = default;

} // namespace orbat
