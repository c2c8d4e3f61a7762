// Throughput of the controller simulator: inverse kinematics, straight-line checks and pallet
// store writes, each printed next to a lower bound measured in the same run.
#include "armsolver.h"
#include "controller.h"
#include "palletstore.h"
#include "rawjson.h"

#include <orba/json.h>
#include <orba/moduleobject.h>
#include <orbat/lineendpoint.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <cstdio>
#include <random>
#include <vector>

using namespace rc;

namespace {

volatile double sink = 0.0;

template<typename F>
double perSecond(int count, F &&f)
{
    QElapsedTimer t;
    t.start();
    for (int i = 0; i < count; ++i)
        f(i);
    return count / (t.nsecsElapsed() / 1e9);
}

QByteArray bigPallet(const QString &name, quint32 seed = 3)
{
    orba::ModuleObject p;
    p.set(nullptr, "name", name);
    QRandomGenerator gen(seed);
    for (int i = 0; i < 1200; ++i) {
        for (const char *k : {"approach", "wobj", "retract"}) {
            const QString base = QString("points.#%1.%2.").arg(i).arg(k);
            for (int j = 0; j < 3; ++j) {
                p.set(nullptr, base + QString("trans.#%1").arg(j), gen.generateDouble());
                p.set(nullptr, base + QString("rot.#%1").arg(j), gen.generateDouble());
            }
            for (int j = 0; j < 6; ++j)
                p.set(nullptr, base + QString("near.#%1").arg(j), gen.generateDouble());
        }
    }
    return p.exportToJson(true);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const RobotModel model = RobotModel::defaultArm();
    std::mt19937 gen(5);
    std::uniform_real_distribution<double> u(-M_PI, M_PI);
    std::vector<Joints> qs(20000);
    for (Joints &q : qs)
        for (int i = 0; i < 6; ++i)
            q[i] = u(gen);
    std::vector<Eigen::Isometry3d> poses;
    for (const Joints &q : qs)
        poses.push_back(model.forward(q));

    const int n = int(qs.size());
    const double fk = perSecond(n * 5, [&](int i) { sink = sink + model.forward(qs[i % n])(0, 3); });
    std::array<Joints, 8> sols;
    const double ik = perSecond(n * 5, [&](int i) { sink = sink + model.inverse(poses[i % n], &sols, 0.0); });
    std::printf("IK solves/s            %12.0f   (FK evaluations/s %12.0f, IK/FK ratio %.2f)\n", ik, fk, ik / fk);

    // 100 mm vertical approach segments above places spread over a pallet in front of the robot.
    const ArmSolver solver(model, Toolset());
    std::vector<std::pair<Pose, Pose>> segments;
    for (int ix = 0; ix < 10; ++ix) {
        for (int iy = 0; iy < 10; ++iy) {
            Pose a, b;
            a.trans = {-0.5 - 0.04 * ix, -0.3 + 0.06 * iy, 0.3};
            a.rot = {M_PI, 0, M_PI / 2};
            a.near = model.home;
            a.hasNear = true;
            b = a;
            b.trans.z() -= 0.1;
            segments.emplace_back(a, b);
        }
    }
    int failed = 0;
    const int segCount = int(segments.size()) * 20;
    const double checks = perSecond(segCount, [&](int i) {
        const auto &s = segments[size_t(i) % segments.size()];
        failed += solver.checkLine(s.first, s.second).ok() ? 0 : 1;
    });
    const int samples = ArmSolver::stepsBetween(segments[0].first.frame(), segments[0].second.frame()) + 1;
    std::printf("move.l.check segments/s %11.0f   (%d IK per segment: %.0f IK/s, %.2f of the bare IK rate; %d of %d failed)\n",
                checks, samples, checks * samples, checks * samples / ik, failed, segCount);

    // Store writes of a 1200-place pallet: through the protocol (parse, index, serialise, commit)
    // and the bare SQLite commit of the same bytes.
    QTemporaryDir dir;
    Controller::Options options;
    options.dataDir = dir.filePath("proto");
    Controller controller(options);
    QString error;
    if (!controller.open(&error)) {
        std::fprintf(stderr, "cannot open the store: %s\n", qPrintable(error));
        return 1;
    }
    std::unique_ptr<orbat::LineEndpoint> session(controller.createSession());
    int replies = 0;
    QByteArray lastReply;
    QObject::connect(session.get(), &orbat::LineEndpoint::sendLine, session.get(), [&](const QByteArray &reply) {
        ++replies;
        lastReply = reply;
    });
    const QByteArray pallet = bigPallet("big");
    // Writes alternate between two versions of the pallet: the store skips pages whose bytes
    // did not change, and a real save changes them.
    const QByteArray changed = bigPallet("big", 4);
    session->receiveLine("{\"id\":0,\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":" + pallet + "}");
    const QByteArray line = "{\"id\":1,\"op\":\"exec\",\"method\":\"tray.set.one\",\"params\":" + pallet + "}";
    const QByteArray lines[2] = {"{\"id\":1,\"op\":\"exec\",\"method\":\"tray.set.one\",\"params\":" + changed + "}", line};
    const int writes = 20;
    const double proto = perSecond(writes, [&](int i) { session->receiveLine(lines[i % 2]); });

    PalletStore bare;
    if (!bare.open(dir.filePath("bare"), &error) || !bare.append({"big", pallet}, &error)) {
        std::fprintf(stderr, "cannot open the bare store: %s\n", qPrintable(error));
        return 1;
    }
    const double raw = perSecond(writes, [&](int i) { bare.replace(0, {"big", i % 2 ? pallet : changed}, &error); });
    const double parse = perSecond(writes, [&](int) {
        orba::ModuleObject request;
        request.importFromJson(nullptr, line);
        sink = sink + request.cmobjCount();
    });
    std::printf("tray writes/s (1200 places, %.1f MB) %6.1f   (bare synchronous commit %6.1f/s, ratio %.2f; parsing the "
                "request line alone %6.1f/s, ratio %.2f; %d replies)\n",
                pallet.size() / 1e6, proto, raw, proto / raw, parse, proto / parse, replies);

    // Where a write's time goes besides the parse: finding the method and "params" in the line,
    // splicing "index" into the received text, and what splicing replaces, writing the tree.
    orba::ModuleObject parsed;
    parsed.importFromJson(nullptr, pallet);
    const double scan = perSecond(writes * 5, [&](int) { sink = sink + rawjson::scanRequest(line).params.size(); });
    const double splice = perSecond(writes * 5, [&](int i) { sink = sink + rawjson::withIndex(pallet, i).size(); });
    const double serialise = perSecond(writes * 5, [&](int i) {
        parsed.set(nullptr, "index", i);
        sink = sink + parsed.exportToJson(true).size();
    });
    // What a write reads of the line now: all of it checked, only the top two levels built.
    const double check = perSecond(writes * 5, [&](int) {
        orba::ModuleObject request;
        orba::json::readLevels(nullptr, &request, line, 2, nullptr, orba::json::maxJsonNodes());
        sink = sink + request.cmobjCount();
    });
    std::printf("per write: request scan %.2f ms, index splice %.2f ms, tree serialisation %.2f ms, parse %.2f ms, "
                "checking read (top levels built) %.2f ms\n",
                1e3 / scan, 1e3 / splice, 1e3 / serialise, 1e3 / parse, 1e3 / check);

    // Removing the first of many full pallets: the rows after it stay as they are on disk, only
    // their "index" changes in the cache. Set against one synchronous write of one pallet.
    const int others = 20;
    for (int i = 0; i < others; ++i) {
        const QByteArray name = "big" + QByteArray::number(i);
        session->receiveLine("{\"id\":2,\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":" + bigPallet(name) + "}");
    }
    QElapsedTimer removal;
    removal.start();
    session->receiveLine("{\"id\":3,\"op\":\"exec\",\"method\":\"tray.del_one\",\"params\":{\"index\":0,\"name\":\"big\"}}");
    const double removeMs = removal.nsecsElapsed() / 1e6;
    const bool removed = lastReply.contains("\"status\":0,\"data\":{\"size\":" + QByteArray::number(others) + "}");
    std::printf("removing the first of %d full pallets %.1f ms   (one synchronous pallet write %.1f ms, ratio %.2f; %s)\n",
                others + 1, removeMs, 1e3 / raw, removeMs * raw / 1e3, removed ? "removed" : "NOT REMOVED");
    return sink == 12345.0 || !removed ? 1 : 0;
}
