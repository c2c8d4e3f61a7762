#include "mainwindow.h"
#include "navigationview.h"
#include "pendanttestutil.h"
#include "shell.h"
#include "shelltheme.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>

// The Tray page in the shell at 1280x800, in every language: no text is cut off or touches the
// edge of its control, and every touch target is large enough.
class TestTextFit : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void trayPageFits_data();
    void trayPageFits();

private:
    std::unique_ptr<QTemporaryDir> m_data;
};

namespace {

QString describe(const QWidget *w)
{
    return QStringLiteral("%1 \"%2\"").arg(w->objectName().isEmpty() ? QLatin1String(w->metaObject()->className())
                                                                     : w->objectName());
}

QDialog *openDialog(const QString &objectName)
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        auto *dialog = qobject_cast<QDialog *>(w);
        if (dialog && dialog->isVisible() && dialog->objectName() == objectName)
            return dialog;
    }
    return nullptr;
}

// What does not fit in `root`: buttons, combo boxes and one-line labels narrower than they ask
// for, and controls lower than a finger.
QStringList misfits(QWidget *root)
{
    QStringList out;
    for (QAbstractButton *b : root->findChildren<QAbstractButton *>()) {
        if (!b->isVisibleTo(root) || b->text().isEmpty())
            continue;
        const QSize hint = b->sizeHint();
        if (b->width() < hint.width() || b->height() < hint.height())
            out << describe(b).arg(b->text()) + QStringLiteral(": %1x%2 < %3x%4").arg(b->width()).arg(b->height())
                                                     .arg(hint.width()).arg(hint.height());
        if (b->height() < shelltheme::MinTouch)
            out << describe(b).arg(b->text()) + QStringLiteral(": %1 px high").arg(b->height());
    }
    for (QComboBox *c : root->findChildren<QComboBox *>()) {
        if (!c->isVisibleTo(root))
            continue;
        if (c->width() < c->sizeHint().width())
            out << describe(c).arg(c->currentText()) + QStringLiteral(": %1 < %2").arg(c->width()).arg(c->sizeHint().width());
        if (c->height() < shelltheme::MinTouch)
            out << describe(c).arg(c->currentText()) + QStringLiteral(": %1 px high").arg(c->height());
    }
    for (QLabel *l : root->findChildren<QLabel *>()) {
        if (!l->isVisibleTo(root) || l->wordWrap() || l->text().isEmpty() || l->textFormat() == Qt::RichText)
            continue;
        if (l->width() < l->sizeHint().width())
            out << describe(l).arg(l->text()) + QStringLiteral(": %1 < %2").arg(l->width()).arg(l->sizeHint().width());
    }
    return out;
}

} // namespace

void TestTextFit::init()
{
    resetHost();
    m_data = std::make_unique<QTemporaryDir>();
    QVERIFY(m_data->isValid());
}

void TestTextFit::cleanup()
{
    m_data.reset();
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("en"));
}

void TestTextFit::trayPageFits_data()
{
    QTest::addColumn<QString>("language");
    for (const char *language : {"en", "cn", "jp", "kr", "ru"})
        QTest::newRow(language) << QString::fromLatin1(language);
}

void TestTextFit::trayPageFits()
{
    QFETCH(QString, language);
    ShellOptions o;
    o.modulesDir = QStringLiteral(TPALLET_MODULE_DIR);
    o.dataDir = m_data->filePath(QStringLiteral("controller"));
    o.level = 4;
    o.language = language;
    o.page = QStringLiteral("tpallet.page");
    Shell shell(o);
    shell.start();
    MainWindow *window = shell.window();
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window));
    QCOMPARE(window->size(), QSize(MainWindow::Width, MainWindow::Height));
    QVERIFY(EmbeddedLink::waitConnected(true, 10000));
    auto *table = window->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    QVERIFY(table);

    // One pallet, added as an operator does, so that the table has a row.
    auto *add = window->findChild<QPushButton *>(QStringLiteral("btnAdd"));
    QTRY_VERIFY(add->isEnabled());
    QTest::mouseClick(add, Qt::LeftButton);
    QDialog *dialog = nullptr;
    QTRY_VERIFY((dialog = openDialog(QStringLiteral("NewPalletDialog"))) != nullptr);
    const QStringList dialogMisfits = misfits(dialog);
    const QString shots = QString::fromLocal8Bit(qgetenv("TPENDANT_SHOT_DIR"));
    if (!shots.isEmpty())
        dialog->grab().save(QStringLiteral("%1/newpallet_%2.png").arg(shots, language));
    auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("edtName"));
    QVERIFY(name);
    name->clear();
    QTest::keyClicks(name, QStringLiteral("P1"));
    QPointer<QDialog> guard = dialog;
    QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("btnOk")), Qt::LeftButton);
    QTRY_VERIFY(guard.isNull() || !guard->isVisible());
    QTRY_COMPARE(table->rowCount(), 1);
    QTest::qWait(50);

    if (!shots.isEmpty()) {
        window->grab().save(QStringLiteral("%1/tray_%2.png").arg(shots, language));
        // The configuration dialog under the shell's theme, for whoever looks at the pictures.
        table->selectRow(0);
        QTest::mouseClick(window->findChild<QPushButton *>(QStringLiteral("btnCfg")), Qt::LeftButton);
        QDialog *cfg = nullptr;
        QTRY_VERIFY((cfg = openDialog(QStringLiteral("PalletSetDialog"))) != nullptr);
        QTest::qWait(100);
        cfg->grab().save(QStringLiteral("%1/palletset_%2.png").arg(shots, language));
        QPointer<QDialog> cfgGuard = cfg;
        QPointer<QPushButton> next = cfg->findChild<QPushButton *>(QStringLiteral("btnNext"));
        for (int step = 1; cfgGuard && cfgGuard->isVisible() && next && next->isVisible() && next->isEnabled() && step < 6;
             ++step) {
            QTest::mouseClick(next, Qt::LeftButton);
            QTest::qWait(100);
            // Questions the step may ask are answered by the host's test queue.
            if (cfgGuard)
                cfgGuard->grab().save(QStringLiteral("%1/palletset_%2_%3.png").arg(shots, language).arg(step));
        }
        if (cfgGuard)
            cfgGuard->reject();
        QTest::qWait(50);
    }

    QStringList problems = misfits(window) + dialogMisfits;

    // Navigation entries show whole.
    NavigationView *nav = window->navigation();
    QList<QModelIndex> pending{QModelIndex()};
    while (!pending.isEmpty()) {
        const QModelIndex parent = pending.takeFirst();
        for (int row = 0; row < nav->model()->rowCount(parent); ++row) {
            const QModelIndex index = nav->model()->index(row, 0, parent);
            pending.append(index);
            const QString text = index.data().toString();
            const int wanted = nav->sizeHintForIndex(index).width();
            const QRect room = nav->visualRect(index);
            if (wanted > room.width())
                problems << QStringLiteral("navigation \"%1\": %2 < %3").arg(text).arg(room.width()).arg(wanted);
            if (room.height() < shelltheme::MinTouch)
                problems << QStringLiteral("navigation \"%1\": %2 px high").arg(text).arg(room.height());
        }
    }

    // Column titles show whole; rows are touch targets.
    QHeaderView *header = table->horizontalHeader();
    for (int column = 0; column < table->columnCount(); ++column) {
        const QString title = table->horizontalHeaderItem(column)->text();
        const int wanted = header->fontMetrics().horizontalAdvance(title) + 12;
        if (header->sectionSize(column) < wanted)
            problems << QStringLiteral("column \"%1\": %2 < %3").arg(title).arg(header->sectionSize(column)).arg(wanted);
    }
    if (table->rowHeight(0) < shelltheme::MinTouch)
        problems << QStringLiteral("table row: %1 px high").arg(table->rowHeight(0));

    QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1String("\n"))));
}

QTEST_MAIN(TestTextFit)
#include "tst_textfit.moc"
