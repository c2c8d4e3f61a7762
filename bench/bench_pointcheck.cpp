// The reachability check of a 1200-place pallet (2400 linear segments) as the point check step
// runs it: through the module, the command service and the embedded controller. Set against the
// controller's own check rate measured in the same run: the same 2400 segments given straight to
// the solver that "move.l.check" uses, and the same requests handed to a controller session in
// this thread (protocol included, no transport, no GUI).
#include "armsolver.h"
#include "controller.h"
#include "robotmodel.h"

#include "module/pointgen.h"
#include "module/toolset.h"
#include "module/tpallet.h"
#include "wizards/pointadjustwizard.h"

#include <kx/kx.h>
#include <orba/json.h>
#include <orba/log.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/controllermanager.h>
#include <orbat/inprocesstransport.h>
#include <orbat/lineendpoint.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr int kRows = 30;
constexpr int kCols = 40;
constexpr double kToolLength = 0.12;
const Eigen::Vector3d kPalletOrigin(0.35, -0.2, 0.0);

template<typename F>
double bestMs(F &&f, int repeat)
{
    double best = 1e300;
    for (int r = 0; r < repeat; ++r) {
        QElapsedTimer t;
        t.start();
        f();
        best = std::min(best, t.nsecsElapsed() / 1e6);
    }
    return best;
}

rc::Toolset cellToolset()
{
    rc::Toolset tools;
    tools.end.translation() = Eigen::Vector3d(0.0, 0.0, kToolLength);
    tools.ref.translation() = kPalletOrigin;
    return tools;
}

// A 30 x 40 pallet lying flat in front of the robot, 450 x 390 mm, tool pointing down; the way
// points 200 mm above the place, the retract 50 mm aside.
orba::ModuleObject *makePallet(orba::ModuleObject *pallets)
{
    orba::ModuleObject *pallet = pallets->append(nullptr, QStringLiteral("#%1").arg(pallets->cmobjCount()));
    pallet->set(nullptr, QStringLiteral("name"), QStringLiteral("bench"), true);
    pallet->set(nullptr, QStringLiteral("pattern.origin"), 0, true);
    pallet->set(nullptr, QStringLiteral("pattern.s_type"), true, true);
    pallet->set(nullptr, QStringLiteral("pattern.row"), kRows, true);
    pallet->set(nullptr, QStringLiteral("pattern.col"), kCols, true);
    pallet->set(nullptr, QStringLiteral("pattern.exchange"), false, true);
    pallet->set(nullptr, QStringLiteral("pattern.rank_v"), false, true);
    orba::ModuleObject *toolset = pallet->append(nullptr, QStringLiteral("calibrate"))->append(nullptr, QStringLiteral("toolset"));
    tpallet::identityToolsetNode(toolset);
    toolset->set(nullptr, QStringLiteral("end.trans.#2"), kToolLength, true);
    for (int i = 0; i < 3; ++i)
        toolset->set(nullptr, QStringLiteral("ref.trans.#%1").arg(i), kPalletOrigin[i], true);
    pallet->set(nullptr, QStringLiteral("calibrate.x_span"), 0.45, true);
    pallet->set(nullptr, QStringLiteral("calibrate.y_span"), 0.39, true);
    tpallet::initWayPointNode(pallet);

    const rc::ArmSolver solver(rc::RobotModel::defaultArm(), cellToolset());
    const rc::SolveResult start = solver.solveNearest(
        rc::frameFromPose(Eigen::Vector3d(0.0, 0.0, 0.1), Eigen::Vector3d(M_PI, 0.0, 0.0)), rc::RobotModel::defaultArm().home);
    const struct
    {
        const char *name;
        Eigen::Vector3d trans;
    } wayPoints[] = {{"wobj", {0.0, 0.0, 0.1}}, {"approach", {0.0, 0.0, 0.3}}, {"retract", {0.0, -0.05, 0.3}}};
    for (const auto &wp : wayPoints) {
        orba::ModuleObject *node = pallet->r(QStringLiteral("waypoint.%1").arg(QLatin1String(wp.name)));
        for (int i = 0; i < 3; ++i)
            node->set(nullptr, QStringLiteral("trans.#%1").arg(i), wp.trans[i], true);
        node->set(nullptr, QStringLiteral("rot.#0"), M_PI, true);
        for (int i = 0; i < 6; ++i)
            node->set(nullptr, QStringLiteral("near.#%1").arg(i), start.q[i], true);
    }
    tpallet::generatePoints1(pallet, nullptr);
    return pallet;
}

rc::Pose poseOf(const orba::ModuleObject *node)
{
    rc::Pose pose;
    for (int i = 0; i < 3; ++i) {
        pose.trans[i] = node->r(QStringLiteral("trans.#%1").arg(i))->getDouble();
        pose.rot[i] = node->r(QStringLiteral("rot.#%1").arg(i))->getDouble();
    }
    for (int i = 0; i < 6; ++i)
        pose.near[i] = node->r(QStringLiteral("near.#%1").arg(i))->getDouble();
    pose.hasNear = true;
    return pose;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    orba::setConsoleLogEnabled(false);
    QTemporaryDir dir;
    if (!dir.isValid()) {
        std::fprintf(stderr, "no temporary directory\n");
        return 1;
    }
    orba::setLogRoot(dir.path());
    // The report at the end of each check is answered at once.
    tcore::ManagerHelper::instance()->setMsgTestMode(true);

    rc::Controller::Options options;
    options.dataDir = dir.filePath(QStringLiteral("embedded"));
    rc::EmbeddedController controller(options);
    QString error;
    if (!controller.start(&error)) {
        std::fprintf(stderr, "controller: %s\n", qPrintable(error));
        return 1;
    }
    orbat::InProcessTransport transport(controller.endpoint());
    tservice()->setTransport(&transport);
    transport.open();
    QElapsedTimer wait;
    wait.start();
    while (!tservice()->controllerManager()->isConnected() && wait.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    if (!tservice()->controllerManager()->isConnected()) {
        std::fprintf(stderr, "controller did not connect\n");
        return 1;
    }

    orba::ModuleObject *pallet = makePallet(kx::globalNode(QStringLiteral("tpallet.pallets")));
    orba::ModuleObject *points = pallet->c(QStringLiteral("points"));
    const int places = points->cmobjCount();

    // The module's check: the step makes the pallet's toolset active on entry, as on the pendant.
    auto *step = new PointAdjustWizard(pallet, nullptr);
    step->resize(1150, 590);
    step->show();
    step->init(true);
    constexpr int kRepeat = 5;
    tcore::ManagerHelper::instance()->clearMsgHistory();

    // The controller's own rate: the same segments straight to its solver.
    std::vector<std::pair<rc::Pose, rc::Pose>> segments;
    segments.reserve(size_t(places) * 2);
    for (int i = 0; i < places; ++i) {
        orba::ModuleObject *place = points->c(i);
        segments.emplace_back(poseOf(place->c(QStringLiteral("approach"))), poseOf(place->c(QStringLiteral("wobj"))));
        segments.emplace_back(poseOf(place->c(QStringLiteral("wobj"))), poseOf(place->c(QStringLiteral("retract"))));
    }
    const rc::ArmSolver solver(rc::RobotModel::defaultArm(), cellToolset());
    int refused = 0;

    // The same requests handed to a controller session in this thread: protocol and solver.
    rc::Controller::Options sessionOptions;
    sessionOptions.dataDir = dir.filePath(QStringLiteral("session"));
    rc::Controller direct(sessionOptions);
    if (!direct.open(&error)) {
        std::fprintf(stderr, "cannot open the store: %s\n", qPrintable(error));
        return 1;
    }
    std::unique_ptr<orbat::LineEndpoint> session(direct.createSession());
    int answers = 0;
    int sessionRefused = 0;
    QObject::connect(session.get(), &orbat::LineEndpoint::sendLine, session.get(), [&](const QByteArray &line) {
        ++answers;
        if (!line.contains("\"status\":0"))
            ++sessionRefused;
    });
    orba::ModuleObject active;
    active.copyFrom(nullptr, pallet->r(QStringLiteral("calibrate.toolset")));
    session->receiveLine("{\"id\":1,\"op\":\"set\",\"method\":\"sys.toolset\",\"params\":" + orba::json::write(&active) + "}");
    std::vector<QByteArray> lines;
    lines.reserve(segments.size());
    for (int i = 0; i < places; ++i) {
        orba::ModuleObject *place = points->c(i);
        for (const auto &pair : {std::make_pair("approach", "wobj"), std::make_pair("wobj", "retract")}) {
            orba::ModuleObject check(QStringLiteral("check"));
            check.append(nullptr, QStringLiteral("point0"))->copyFrom(nullptr, place->c(QLatin1String(pair.first)));
            check.append(nullptr, QStringLiteral("point1"))->copyFrom(nullptr, place->c(QLatin1String(pair.second)));
            lines.push_back("{\"id\":" + QByteArray::number(qulonglong(lines.size() + 2))
                            + ",\"op\":\"exec\",\"method\":\"move.l.check\",\"params\":" + orba::json::write(&check) + "}");
        }
    }

    // Taken in turns, so that a busy machine weighs on all three alike.
    double moduleMs = 1e300, solverMs = 1e300, sessionMs = 1e300;
    for (int r = 0; r < kRepeat; ++r) {
        moduleMs = std::min(moduleMs, bestMs([&] { step->checkAccess(); }, 1));
        solverMs = std::min(solverMs, bestMs([&] {
            refused = 0;
            for (const auto &s : segments)
                refused += solver.checkLine(s.first, s.second).ok() ? 0 : 1;
        }, 1));
        sessionMs = std::min(sessionMs, bestMs([&] {
            sessionRefused = 0;
            for (const QByteArray &line : lines)
                session->receiveLine(line);
        }, 1));
    }
    const QList<tcore::ManagerHelper::MsgRecord> reports = tcore::ManagerHelper::instance()->msgHistory();
    const bool passed = reports.size() == kRepeat && reports.last().text == QLatin1String("Check is passed!");

    const int count = int(segments.size());
    std::printf("point check of a %d-place pallet (%d x %d, %d segments), embedded controller, best of %d\n\n", places,
                kRows, kCols, count, kRepeat);
    std::printf("%-52s %10s %14s %8s\n", "path", "time [ms]", "segments/s", "ratio");
    std::printf("%-52s %10.1f %14.0f %8.2f\n", "controller solver alone (the bound)", solverMs, count / solverMs * 1000.0, 1.0);
    std::printf("%-52s %10.1f %14.0f %8.2f\n", "controller session, protocol + solver, same thread", sessionMs,
                count / sessionMs * 1000.0, sessionMs / solverMs);
    std::printf("%-52s %10.1f %14.0f %8.2f\n", "PointAdjustWizard::checkAccess, module to controller", moduleMs,
                count / moduleMs * 1000.0, moduleMs / solverMs);
    std::printf("\nmodule overhead per segment %.1f us over the solver; refused: solver %d, session %d; "
                "report \"%s\"; under 2 s: %s\n",
                (moduleMs - solverMs) * 1000.0 / count, refused, sessionRefused,
                reports.isEmpty() ? "" : qPrintable(reports.last().text), moduleMs < 2000.0 ? "yes" : "NO");

    delete step;
    tservice()->setTransport(nullptr);
    return passed && refused == 0 && sessionRefused == 0 && answers >= count ? 0 : 1;
}
