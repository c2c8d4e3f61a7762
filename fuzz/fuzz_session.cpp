// The controller's request handling: each line of the input (split at line feeds) goes to a
// session of an in-process rc::Controller whose pallet store lives in a temporary folder, the way
// the pendant's in-process transport and rcsim's TCP server hand over request lines. Besides the
// sanitizers it checks that every line sent back is one line of JSON.
#include "controller.h"

#include <orba/json.h>
#include <orbat/lineendpoint.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QList>
#include <QObject>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

[[noreturn]] void failed(const char *what, const QByteArray &detail)
{
    std::fprintf(stderr, "fuzz_session: %s: %s\n", what, detail.left(500).constData());
    std::abort();
}

// A fresh controller now and then, so that the store stays small and runs stay alike.
struct Harness
{
    std::unique_ptr<QTemporaryDir> dir;
    std::unique_ptr<rc::Controller> controller;
    int runs = 0;

    void renew()
    {
        controller.reset();
        // Temporary files in memory where there is such a place: the store syncs every change.
        const QString base = QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm")
                                                                         : QDir::tempPath();
        dir = std::make_unique<QTemporaryDir>(base + QStringLiteral("/fuzz_session-XXXXXX"));
        rc::Controller::Options options;
        options.dataDir = dir->path();
        controller = std::make_unique<rc::Controller>(options);
        QString error;
        if (!controller->open(&error))
            failed("cannot open the controller's store", error.toUtf8());
        runs = 0;
    }
};

Harness *harness = nullptr;

void checkLine(const QByteArray &line)
{
    if (line.contains('\n'))
        failed("a line sent back holds a line feed", line);
    bool ok = false;
    QString error;
    orba::json::toVariant(line, &ok, &error);
    if (!ok)
        failed("a line sent back is no JSON", error.toUtf8() + " in " + line);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication app(*argc, *argv);
    harness = new Harness;
    harness->renew();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (++harness->runs > 500)
        harness->renew();
    const QByteArray input = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    std::unique_ptr<orbat::LineEndpoint> session(harness->controller->createSession());
    QObject::connect(session.get(), &orbat::LineEndpoint::sendLine, session.get(), &checkLine);
    int start = 0;
    while (start <= input.size()) {
        int end = input.indexOf('\n', start);
        if (end < 0)
            end = input.size();
        session->receiveLine(input.mid(start, end - start));
        start = end + 1;
    }
    // Whatever the lines started (motion, watches) ends with the connection.
    session->clientClosed();
    session.reset();
    QCoreApplication::processEvents();
    return 0;
}
