// rcsim's answer time to a well-behaved client (one request, wait for the reply, the next, as the
// pendant does) while misbehaving clients are connected: one floods requests and never reads, one
// asks for the whole pallet list over and over and never reads, a few stop half way through a line.
// The bound is the same client, same requests, with rcsim to itself, in the same run.
#include <orba/moduleobject.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr int kRequests = 400;

QByteArray pallet(const QString &name, int places)
{
    orba::ModuleObject p;
    p.set(nullptr, QStringLiteral("name"), name);
    for (int i = 0; i < places; ++i) {
        for (int j = 0; j < 3; ++j)
            p.set(nullptr, QStringLiteral("points.#%1.wobj.trans.#%2").arg(i).arg(j), i * 0.01 + j / 3.0);
        for (int j = 0; j < 6; ++j)
            p.set(nullptr, QStringLiteral("points.#%1.wobj.near.#%2").arg(i).arg(j), -0.1 * j + i * 1e-6);
    }
    return p.exportToJson(true);
}

quint16 startRcsim(QProcess *process, const QString &dataDir)
{
    process->start(QStringLiteral(RCSIM_BIN), {QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0"),
                                               QStringLiteral("--data"), dataDir});
    if (!process->waitForStarted(5000))
        return 0;
    QByteArray out;
    while (!out.contains('\n') && process->waitForReadyRead(5000))
        out += process->readAllStandardOutput();
    const QByteArray line = out.left(out.indexOf('\n'));
    return quint16(line.mid(line.lastIndexOf(':') + 1).toUInt());
}

bool call(QTcpSocket &s, const QByteArray &line, QByteArray *reply)
{
    s.write(line);
    s.write("\n", 1);
    while (!s.canReadLine()) {
        if (!s.waitForReadyRead(10000))
            return false;
    }
    *reply = s.readLine();
    return true;
}

struct Figures
{
    double median = 0, p99 = 0, max = 0;
    int failed = 0;
};

// The well-behaved client: adds a pallet, lists, rewrites it, reads the power, pings.
Figures wellBehaved(quint16 port, const QString &tag)
{
    Figures f;
    QTcpSocket s;
    s.connectToHost(QStringLiteral("127.0.0.1"), port);
    if (!s.waitForConnected(5000)) {
        f.failed = kRequests;
        return f;
    }
    std::vector<double> ms;
    QByteArray reply;
    for (int n = 0; n < kRequests; ++n) {
        QByteArray line = "{\"id\":" + QByteArray::number(n) + ",";
        const QString name = QStringLiteral("%1-%2").arg(tag).arg(n - n % 5);
        switch (n % 5) {
        case 0: line += "\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":" + pallet(name, 20) + "}"; break;
        case 1: line += "\"op\":\"exec\",\"method\":\"tray.query.list\"}"; break;
        case 2: line += "\"op\":\"exec\",\"method\":\"tray.set.one\",\"params\":" + pallet(name, 30) + "}"; break;
        case 3: line += "\"op\":\"get\",\"method\":\"sys.power\"}"; break;
        default: line += "\"op\":\"ping\",\"method\":\"ping\"}"; break;
        }
        QElapsedTimer t;
        t.start();
        if (!call(s, line, &reply) || !reply.contains("\"result\"")) {
            ++f.failed;
            continue;
        }
        ms.push_back(t.nsecsElapsed() / 1e6);
    }
    if (ms.empty())
        return f;
    std::sort(ms.begin(), ms.end());
    f.median = ms[ms.size() / 2];
    f.p99 = ms[std::min(ms.size() - 1, ms.size() * 99 / 100)];
    f.max = ms.back();
    return f;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    QProcess rcsim;
    const quint16 port = startRcsim(&rcsim, dir.path());
    if (port == 0) {
        std::fprintf(stderr, "rcsim did not start\n");
        return 1;
    }
    // The list the non-reader asks for: by default the largest a pendant holds, 100 pallets of
    // 1200 places (about 100 MB of JSON); "--pallets N --places M" for others.
    int pallets = 100, places = 1200;
    const QStringList args = app.arguments();
    for (int i = 1; i + 1 < args.size(); ++i) {
        if (args.at(i) == QLatin1String("--pallets"))
            pallets = args.at(i + 1).toInt();
        else if (args.at(i) == QLatin1String("--places"))
            places = args.at(i + 1).toInt();
    }
    {
        QTcpSocket s;
        s.connectToHost(QStringLiteral("127.0.0.1"), port);
        s.waitForConnected(5000);
        QByteArray reply;
        const QByteArray one = pallet(QStringLiteral("base-name-0000"), places);
        for (int i = 0; i < pallets; ++i) {
            QByteArray params = one;
            params.replace("base-name-0000", QStringLiteral("base-name-%1").arg(i, 4, 10, QLatin1Char('0')).toUtf8());
            call(s, "{\"id\":1,\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":" + params + "}", &reply);
        }
    }

    const Figures alone = wellBehaved(port, QStringLiteral("alone"));

    // The misbehaving ones, connected for the whole second run.
    std::vector<std::unique_ptr<QTcpSocket>> bad;
    auto connectBad = [&] {
        bad.push_back(std::make_unique<QTcpSocket>());
        bad.back()->connectToHost(QStringLiteral("127.0.0.1"), port);
        bad.back()->waitForConnected(5000);
        return bad.back().get();
    };
    QByteArray flood;
    for (int i = 0; i < 20000; ++i)
        flood += "{\"id\":" + QByteArray::number(i) + ",\"op\":\"exec\",\"method\":\"tray.query.list\"}\n";
    connectBad()->write(flood);
    QByteArray whole;
    for (int i = 0; i < 200; ++i)
        whole += "{\"id\":" + QByteArray::number(i) + ",\"op\":\"get\",\"method\":\"tray.data\"}\n";
    connectBad()->write(whole);
    for (int i = 0; i < 4; ++i)
        connectBad()->write("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.query");
    for (auto &s : bad)
        s->waitForBytesWritten(1000);

    const Figures abused = wellBehaved(port, QStringLiteral("abused"));

    std::printf("well-behaved client, %d requests (add, list, rewrite, power, ping) to rcsim on loopback;\n"
                "the non-reader asks for a list of %d pallets of %d places\n\n",
                kRequests, pallets, places);
    std::printf("%-44s %12s %12s %12s %7s\n", "", "median [ms]", "p99 [ms]", "max [ms]", "failed");
    std::printf("%-44s %12.2f %12.2f %12.2f %7d\n", "alone (bound)", alone.median, alone.p99, alone.max, alone.failed);
    std::printf("%-44s %12.2f %12.2f %12.2f %7d\n", "beside a flooder, a non-reader, 4 half-open", abused.median,
                abused.p99, abused.max, abused.failed);
    std::printf("\nratio of max to the bound's max: %.2f; every answer under 100 ms: %s\n", abused.max / alone.max,
                abused.failed == 0 && abused.max < 100 ? "yes" : "NO");
    rcsim.terminate();
    rcsim.waitForFinished(5000);
    return abused.failed == 0 ? 0 : 1;
}
