#include "dialogs/imexportdialog.h"
#include "ui_imexportdialog.h"

#include "dialogs/tfiledialog.h"
#include "modulelog.h"
#include "registration.h"
#include "tpallet.h"

#include <kx/kx.h>
#include <orba/creatormanager.h>
#include <orba/modulemanager.h>
#include <orba/names.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>

#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>
#include <QTableWidget>
#include <QTableWidgetItem>

#include <cmath>
#include <memory>

namespace {

const tpallet::Registration s_version(
    [] { orba::versionManager()->regist(mName(QStringLiteral("tpallet"), QStringLiteral("pallet.dialog.imexport")), [] { return 1; }); },
    [] { orba::versionManager()->unregist(mName(QStringLiteral("tpallet"), QStringLiteral("pallet.dialog.imexport"))); });

constexpr int kMaxPlaces = 1200;
constexpr int kRowHeight = 44;

// Keeps array element names "#i" in step with positions after an element was removed.
void renumber(orba::ModuleObject *array)
{
    const int count = array->cmobjCount();
    for (int i = 0; i < count; ++i) {
        orba::ModuleObject *child = array->c(i);
        const QString expected = QStringLiteral("#%1").arg(i);
        if (child->name() != expected)
            child->setName(expected);
    }
}

QString nameOf(const orba::ModuleObject *pallet)
{
    return pallet->r(QStringLiteral("name"))->getString();
}

bool isNumberValue(const QVariant &v)
{
    switch (v.userType()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
        return true;
    case QMetaType::Double:
        return std::isfinite(v.toDouble());
    default:
        return false;
    }
}

bool isNumber(const orba::ModuleObject *node)
{
    return node->cmobjCount() == 0 && isNumberValue(node->value());
}

// An array of numbers in exported form: a list (an array node without a value of its own) whose
// elements are all plain numbers (a leaf with children exports as a list or a map).
bool isNumberList(const QVariant &v, int minCount, int maxCount)
{
    if (v.userType() != QMetaType::QVariantList)
        return false;
    const QVariantList list = v.toList();
    if (list.size() < minCount || list.size() > maxCount)
        return false;
    for (const QVariant &element : list) {
        if (!isNumberValue(element))
            return false;
    }
    return true;
}

// Arrays are read through their exported form so that their elements are never turned into
// objects: a file of twenty full pallets holds over a million numbers.
bool isNumberArray(const orba::ModuleObject *node, int minCount, int maxCount)
{
    return isNumberList(node->exportToVariant(), minCount, maxCount);
}

// A leaf of the pallet has the type of the layout's leaf; an integer serves where a real is due.
bool sameKind(const QVariant &layout, const QVariant &value)
{
    const int want = layout.userType();
    const int have = value.userType();
    if (want == QMetaType::Double)
        return have == QMetaType::Double || have == QMetaType::Int || have == QMetaType::LongLong;
    if (want == QMetaType::Int || want == QMetaType::LongLong)
        return have == QMetaType::Int || have == QMetaType::LongLong;
    return want == have;
}

// A pose: "trans" and "rot" three numbers each, "near" (when given) up to six joint angles.
QString poseDefect(const orba::ModuleObject *pose, const QString &path)
{
    if (pose->hasValue())
        return path;
    const QVariantMap parts = pose->exportToVariant().toMap();
    if (!isNumberList(parts.value(QStringLiteral("trans")), 3, 3))
        return path + QStringLiteral(".trans");
    if (!isNumberList(parts.value(QStringLiteral("rot")), 3, 3))
        return path + QStringLiteral(".rot");
    const QVariant near = parts.value(QStringLiteral("near"));
    if (near.isValid() && !isNumberList(near, 1, 6))
        return path + QStringLiteral(".near");
    return QString();
}

QString optionalNumberDefect(const orba::ModuleObject *pallet, const QString &path)
{
    const orba::ModuleObject *node = pallet->r(path);
    return node->isNull() || isNumber(node) ? QString() : path;
}

QString toolsetDefect(const orba::ModuleObject *toolset, const QString &path)
{
    if (toolset->isNull())
        return QString();
    if (toolset->hasValue())
        return path;
    for (const char *frame : {"end", "ref"}) {
        const orba::ModuleObject *pose = toolset->r(QLatin1String(frame));
        if (pose->isNull())
            continue;
        if (!isNumberArray(pose->r(QStringLiteral("trans")), 3, 3) || !isNumberArray(pose->r(QStringLiteral("rot")), 3, 3))
            return path + QLatin1Char('.') + QLatin1String(frame);
    }
    const QString mass = QStringLiteral("load.mass");
    if (!toolset->r(mass)->isNull() && !isNumber(toolset->r(mass)))
        return path + QLatin1Char('.') + mass;
    for (const char *vector : {"load.cog", "load.inertia"}) {
        const orba::ModuleObject *node = toolset->r(QLatin1String(vector));
        if (!node->isNull() && !isNumberArray(node, 3, 3))
            return path + QLatin1Char('.') + QLatin1String(vector);
    }
    return QString();
}

} // namespace

ImExportDialog::ImExportDialog(bool import, orba::ModuleObject *pallets, QWidget *parent)
    : QDialog(parent)
    , m_ui(new Ui::ImExportDialog)
    , m_isImport(import)
    , m_pallets(pallets)
    , m_importList(new orba::ModuleObject(QStringLiteral("import")))
{
    tpallet::makeUniqueDialog(this);
    tpallet::bindDialogToNode(this, pallets);

    m_ui->setupUi(this);
    QTableWidget *table = m_ui->tableWidget;
    table->setColumnCount(3);
    table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Interactive);
    table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Interactive);
    table->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
    table->horizontalHeader()->setMinimumHeight(36);
    table->verticalHeader()->setDefaultAlignment(Qt::AlignCenter);
    table->verticalHeader()->setMinimumSectionSize(kRowHeight);
    table->verticalHeader()->setDefaultSectionSize(kRowHeight);
    table->setColumnWidth(1, 260);
    m_ui->edtPath->setReadOnly(true);

    connect(m_ui->btnOk, &QPushButton::clicked, this, &ImExportDialog::work);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_ui->btnOpen, &QPushButton::clicked, this, &ImExportDialog::openFile);
    connect(m_ui->chbSelectAll, &QCheckBox::toggled, this, &ImExportDialog::setAllChecked);

    if (!m_isImport) {
        m_ui->gpbOptions->hide();
        loadList(pallets);
    }
}

ImExportDialog::~ImExportDialog()
{
    delete m_importList;
    delete m_ui;
}

orba::ModuleObject *ImExportDialog::defaultPallet() const
{
    orba::ModuleObject *sibling = m_pallets ? m_pallets->p(0)->c(QStringLiteral("default"), false)
                                            : orba::ModuleManager::emptyMobj();
    return sibling->isEmpty() ? orba::m(QStringLiteral("tpallet.default")) : sibling;
}

void ImExportDialog::setAllChecked(bool on)
{
    QTableWidget *table = m_ui->tableWidget;
    for (int row = 0; row < table->rowCount(); ++row) {
        if (auto *box = qobject_cast<QCheckBox *>(table->cellWidget(row, 0)))
            box->setChecked(on);
    }
}

QList<int> ImExportDialog::checkedRows() const
{
    QList<int> rows;
    const QTableWidget *table = m_ui->tableWidget;
    for (int row = 0; row < table->rowCount(); ++row) {
        const auto *box = qobject_cast<const QCheckBox *>(table->cellWidget(row, 0));
        if (box && box->isChecked())
            rows.append(row);
    }
    return rows;
}

void ImExportDialog::loadList(orba::ModuleObject *list)
{
    QTableWidget *table = m_ui->tableWidget;
    table->clearContents();
    const int count = list ? list->cmobjCount() : 0;
    table->setRowCount(count);
    for (int row = 0; row < count; ++row) {
        const orba::ModuleObject *pallet = list->c(row);
        auto *box = new QCheckBox(table);
        box->setObjectName(QStringLiteral("chbRow%1").arg(row));
        box->setChecked(true);
        table->setCellWidget(row, 0, box);
        auto *name = new QTableWidgetItem(nameOf(pallet));
        auto *desc = new QTableWidgetItem(pallet->r(QStringLiteral("desc"))->getString());
        for (QTableWidgetItem *item : {name, desc}) {
            item->setTextAlignment(Qt::AlignCenter);
            item->setFlags(Qt::ItemIsEnabled);
        }
        table->setItem(row, 1, name);
        table->setItem(row, 2, desc);
    }
    table->resizeColumnToContents(0);
    table->resizeRowsToContents();
    m_ui->chbSelectAll->setChecked(true);
}

void ImExportDialog::openFile()
{
    QPointer<ImExportDialog> self(this);
    const QString key = m_isImport ? QStringLiteral("import") : QStringLiteral("export");
    QString dir = orba::m(QStringLiteral("tormo.help.file_path"))->r(key)->getString();
    if (dir.isEmpty())
        dir = QDir::currentPath();

    QString path = m_isImport
                       ? tFileDialog::getOpenFileName(nullptr, tr("Open XML file"), dir, tr("XML (*.xml)"))
                       : tFileDialog::getSaveFileName(nullptr, tr("Save XML file"), dir, QStringLiteral("tray.xml"),
                                                      tr("XML (*.xml)"));
    // The file dialog is modal: this dialog may have been closed meanwhile.
    if (!self || path.isEmpty())
        return;

    kx::globalNode(QStringLiteral("tormo.help.file_path"))
        ->set(this, key, path.left(path.lastIndexOf(QLatin1Char('/')) + 1), true);
    if (!m_isImport)
        path = withXmlSuffix(path);
    m_ui->edtPath->setText(QDir::current().relativeFilePath(path));
    if (m_isImport)
        readImportFile(path);
}

void ImExportDialog::refuseFile(const QString &message)
{
    m_importList->clear(this, true, false);
    m_importList->setValue(this, QVariant(), true);
    loadList(m_importList);
    m_ui->edtPath->clear();
    tpallet::logError(QStringLiteral("import refused: ") + message);
    tcore::ManagerHelper::instance()->execMsgOk(QStringLiteral("warning"), message, QStringLiteral("_"));
}

void ImExportDialog::readImportFile(const QString &path)
{
    const QString file = QFileInfo(path).fileName();
    m_importList->clear(this, true, false);

    const qint64 size = QFileInfo(path).size();
    if (size > orba::ModuleManager::maxXmlBytes()) {
        refuseFile(tr("The file %1 is too large (%2 MB); a pallet file has at most %3 MB.")
                       .arg(file)
                       .arg(size / (1024 * 1024))
                       .arg(orba::ModuleManager::maxXmlBytes() / (1024 * 1024)));
        return;
    }
    if (!orba::ModuleManager::readFromXmlFile(this, m_importList, path)) {
        refuseFile(tr("The file %1 cannot be read as a pallet file:\n%2").arg(file, orba::ModuleManager::lastError()));
        return;
    }

    // A list of pallets: no value of its own, every element an object. A single pallet at the top
    // is not a list.
    const orba::ModuleObject *layout = defaultPallet();
    const QStringList keys = layout->cmobjNames(false);
    bool isList = !m_importList->hasValue();
    for (int i = 0; isList && i < m_importList->cmobjCount(); ++i) {
        const orba::ModuleObject *pallet = m_importList->c(i);
        isList = pallet->cmobjCount() > 0 && !pallet->isArray();
    }
    if (isList && m_importList->cmobjCount() > 0 && !keys.isEmpty()) {
        bool topIsPallet = true;
        for (const QString &key : keys)
            topIsPallet = topIsPallet && m_importList->hasCmobj(key, false);
        isList = !topIsPallet;
    }
    if (!isList) {
        refuseFile(tr("The file %1 does not hold a list of pallets.").arg(file));
        return;
    }

    // Pallets of another layout or version are not offered.
    for (int i = m_importList->cmobjCount() - 1; i >= 0; --i) {
        const orba::ModuleObject *pallet = m_importList->c(i);
        for (const QString &key : keys) {
            if (!pallet->hasCmobj(key, false)) {
                m_importList->remove(this, i);
                break;
            }
        }
    }

    QSet<QString> names;
    for (int i = 0; i < m_importList->cmobjCount(); ++i) {
        const orba::ModuleObject *pallet = m_importList->c(i);
        const QString defect = palletDefect(pallet, layout);
        if (!defect.isEmpty()) {
            const QString name = nameOf(pallet);
            refuseFile(tr("The pallet %1 in the file %2 has a missing or wrong value at \"%3\". Nothing is imported "
                          "from this file.")
                           .arg(name.isEmpty() ? QStringLiteral("#%1").arg(i + 1) : name.left(64), file, defect));
            return;
        }
        const QString name = nameOf(pallet);
        if (names.contains(name)) {
            refuseFile(tr("The pallet name %1 is used twice in the file %2. Nothing is imported from this file.")
                           .arg(name, file));
            return;
        }
        names.insert(name);
    }
    loadList(m_importList);
}

QString ImExportDialog::palletDefect(const orba::ModuleObject *pallet, const orba::ModuleObject *layout)
{
    if (!pallet || pallet->hasValue())
        return QStringLiteral(".");
    static const QRegularExpression namePattern(QStringLiteral("^[A-Za-z0-9_-]{1,32}$"));
    const orba::ModuleObject *name = pallet->r(QStringLiteral("name"));
    if (name->value().userType() != QMetaType::QString || name->cmobjCount() > 0
        || !namePattern.match(name->getString()).hasMatch())
        return QStringLiteral("name");
    const orba::ModuleObject *desc = pallet->r(QStringLiteral("desc"));
    if (desc->cmobjCount() > 0 || (desc->hasValue() && desc->value().userType() != QMetaType::QString))
        return QStringLiteral("desc");
    const orba::ModuleObject *index = pallet->r(QStringLiteral("index"));
    if (index->cmobjCount() > 0 || (index->hasValue() && !sameKind(QVariant(0), index->value())))
        return QStringLiteral("index");

    // Every value of the layout is there, with its type.
    if (layout) {
        const QStringList paths = layout->cmobjNames(true);
        for (const QString &path : paths) {
            const orba::ModuleObject *want = layout->r(path);
            if (want->hasValue() && !sameKind(want->value(), pallet->r(path)->value()))
                return path;
        }
    }

    const int rows = pallet->r(QStringLiteral("pattern.row"))->getInt(0);
    const int cols = pallet->r(QStringLiteral("pattern.col"))->getInt(0);
    if (rows < 1 || rows > kMaxPlaces)
        return QStringLiteral("pattern.row");
    if (cols < 1 || qint64(rows) * cols > kMaxPlaces)
        return QStringLiteral("pattern.col");
    const int origin = pallet->r(QStringLiteral("pattern.origin"))->getInt(-1);
    if (origin < 0 || origin > 3)
        return QStringLiteral("pattern.origin");

    for (const char *key : {"calibrate.x_span", "calibrate.y_span", "calibrate.x_offset_13", "calibrate.x_offset_24",
                            "calibrate.y_offset_34"}) {
        const QString defect = optionalNumberDefect(pallet, QLatin1String(key));
        if (!defect.isEmpty())
            return defect;
    }
    for (int k = 1; k <= 4; ++k) {
        const QString path = QStringLiteral("calibrate.p%1").arg(k);
        const orba::ModuleObject *pose = pallet->r(path);
        if (!pose->isNull()) {
            const QString defect = poseDefect(pose, path);
            if (!defect.isEmpty())
                return defect;
        }
    }
    QString defect = toolsetDefect(pallet->r(QStringLiteral("calibrate.toolset")), QStringLiteral("calibrate.toolset"));
    if (!defect.isEmpty())
        return defect;

    const orba::ModuleObject *waypoint = pallet->r(QStringLiteral("waypoint"));
    if (waypoint->hasValue())
        return QStringLiteral("waypoint");
    for (const char *key : {"wobj", "approach", "retract"}) {
        const orba::ModuleObject *pose = waypoint->r(QLatin1String(key));
        if (pose->isNull())
            continue;
        defect = poseDefect(pose, QStringLiteral("waypoint.") + QLatin1String(key));
        if (!defect.isEmpty())
            return defect;
    }

    // The base grid: lines of two-number places, at most one per place.
    const orba::ModuleObject *grid = pallet->r(QStringLiteral("calibrate.points"));
    if (!grid->isNull()) {
        if (grid->hasValue() || !grid->isArray())
            return QStringLiteral("calibrate.points");
        int places = 0;
        for (int i = 0; i < grid->cmobjCount(); ++i) {
            const orba::ModuleObject *line = grid->c(i);
            const QString path = QStringLiteral("calibrate.points.#%1").arg(i);
            if (line->isNull())
                continue;
            if (line->hasValue() || !line->isArray())
                return path;
            places += line->cmobjCount();
            if (places > kMaxPlaces)
                return path;
            const QVariantList cells = line->exportToVariant().toList();
            for (int j = 0; j < cells.size(); ++j) {
                if (!isNumberList(cells.at(j), 2, 2))
                    return path + QStringLiteral(".#%1").arg(j);
            }
        }
    }

    const orba::ModuleObject *points = pallet->r(QStringLiteral("points"));
    if (!points->isNull()) {
        if (points->hasValue() || !points->isArray() || points->cmobjCount() > kMaxPlaces)
            return QStringLiteral("points");
        for (int i = 0; i < points->cmobjCount(); ++i) {
            const orba::ModuleObject *place = points->c(i);
            const QString path = QStringLiteral("points.#%1").arg(i);
            if (place->hasValue())
                return path;
            for (const char *key : {"approach", "wobj", "retract"}) {
                defect = poseDefect(place->r(QLatin1String(key)), path + QLatin1Char('.') + QLatin1String(key));
                if (!defect.isEmpty())
                    return defect;
            }
        }
    }
    return QString();
}

void ImExportDialog::work()
{
    // The loops below process events: a second press must not start a second run.
    if (m_working)
        return;
    QPointer<ImExportDialog> self(this);
    m_working = true;
    m_ui->btnOk->setEnabled(false);
    m_ui->btnOpen->setEnabled(false);
    if (m_isImport)
        importSelected();
    else
        exportSelected();
    if (!self)
        return;
    m_working = false;
    m_ui->btnOk->setEnabled(true);
    m_ui->btnOpen->setEnabled(true);
}

void ImExportDialog::importSelected()
{
    QPointer<ImExportDialog> self(this);
    QList<QPointer<orba::ModuleObject>> chosen;
    if (m_importList) {
        for (const int row : checkedRows()) {
            orba::ModuleObject *pallet = m_importList->c(row);
            if (!pallet->isEmpty())
                chosen.append(pallet);
        }
    }
    for (const QPointer<orba::ModuleObject> &pallet : qAsConst(chosen)) {
        if (!m_pallets)
            break;
        if (!pallet)
            continue;
        importNodeFast(pallet);
        if (!self)
            return;
        QCoreApplication::processEvents();
        if (!self)
            return;
    }
    delete m_importList;
    m_importList = nullptr;
    // The pallet list went away meanwhile: the dialog was closed with it.
    if (!m_pallets)
        return;
    if (!chosen.isEmpty())
        tpallet::recordCfgLog(tr("Import success!"), false);
    accept();
}

void ImExportDialog::exportSelected()
{
    const QString path = m_ui->edtPath->text();
    if (path.isEmpty()) {
        tpallet::recordCfgLog(tr("Export path can not be empty!"), false);
        return;
    }
    QPointer<ImExportDialog> self(this);
    QPointer<orba::ModuleObject> layout(defaultPallet());
    auto list = std::make_unique<orba::ModuleObject>(QStringLiteral("temp_list"));
    // Rows count in table order, ticked or not, so that a row's number is its pallet's index.
    for (const int row : checkedRows()) {
        if (!m_pallets || !layout)
            return;
        const orba::ModuleObject *pallet = m_pallets->c(row);
        if (pallet->isEmpty())
            continue;
        orba::ModuleObject *item = list->append(this, QString());
        item->copyFrom(this, layout, true, false);
        item->overlayFrom(this, pallet, true);
        QCoreApplication::processEvents();
        if (!self)
            return;
    }
    if (!m_pallets)
        return;
    const bool written = orba::ModuleManager::writeToXmlFile(path, list.get(), true, true);
    const QString why = orba::ModuleManager::lastError();
    list.reset();
    if (!written) {
        tpallet::logError(QStringLiteral("export failed: ") + why);
        tcore::ManagerHelper::instance()->execMsgOk(
            QStringLiteral("warning"), tr("The pallets could not be written to %1:\n%2").arg(path, why), QStringLiteral("_"));
        return;
    }
    // The disk may be pulled as soon as the dialog closes.
    tFileDialog::SystemFileSync();
    tpallet::recordCfgLog(tr("Export success to %1!").arg(QFileInfo(path).baseName()), false);
    accept();
}

QString ImExportDialog::withXmlSuffix(const QString &path)
{
    return path.contains(QLatin1String(".xml")) ? path : path + QStringLiteral(".xml");
}

QString ImExportDialog::getNewName(const QString &name)
{
    static const QRegularExpression trailingDigits(QStringLiteral("\\d+$"));
    const QRegularExpressionMatch match = trailingDigits.match(name);
    if (!match.hasMatch())
        return name + QLatin1Char('1');
    // Decimal increment on the text, so that any run of digits works.
    QString number = match.captured(0);
    int i = number.size() - 1;
    while (i >= 0 && number.at(i) == QLatin1Char('9')) {
        number[i] = QLatin1Char('0');
        --i;
    }
    if (i < 0)
        number.prepend(QLatin1Char('1'));
    else
        number[i] = QChar(number.at(i).unicode() + 1);
    int zeros = 0;
    while (zeros < number.size() - 1 && number.at(zeros) == QLatin1Char('0'))
        ++zeros;
    return name.left(match.capturedStart(0)) + number.mid(zeros);
}

bool ImExportDialog::hasNode(const QString &name) const
{
    if (!m_pallets)
        return false;
    for (int i = 0; i < m_pallets->cmobjCount(); ++i) {
        if (nameOf(m_pallets->c(i)) == name)
            return true;
    }
    return false;
}

void ImExportDialog::removeNode(const QString &name)
{
    orba::ModuleObject *list = m_pallets;
    if (!list)
        return;
    for (int i = 0; i < list->cmobjCount(); ++i) {
        QPointer<orba::ModuleObject> pallet = list->c(i);
        if (nameOf(pallet) != name)
            continue;
        orba::ModuleObject param;
        param.set(this, QStringLiteral("index"), i, true);
        param.set(this, QStringLiteral("name"), name, true);
        const orba::MobjPtr reply = tservice()->execCommand(this, QStringLiteral("tray.del_one"), &param);
        // A refusal keeps the old pallet: the new one is then added beside it.
        if (reply->getInt(0) == 0 && pallet && m_pallets) {
            m_pallets->remove(this, pallet.data());
            renumber(m_pallets);
        }
        return;
    }
}

void ImExportDialog::importNodeFast(orba::ModuleObject *pallet)
{
    if (!m_importList || !pallet)
        return;
    std::unique_ptr<orba::ModuleObject> owned(m_importList->take(this, pallet));
    if (!owned)
        return;
    QPointer<ImExportDialog> self(this);
    QString name = nameOf(owned.get());
    if (hasNode(name)) {
        if (m_ui->rbtnDiscard->isChecked())
            return;
        if (m_ui->rbtnRename->isChecked()) {
            QString newName = getNewName(name);
            while (hasNode(newName))
                newName = getNewName(newName);
            owned->set(this, QStringLiteral("name"), newName, true);
            name = newName;
        } else if (m_ui->rbtnReplace->isChecked()) {
            removeNode(name);
            if (!self)
                return;
        }
    }
    orba::ModuleObject *list = m_pallets;
    if (!list)
        return;
    owned->setName(QStringLiteral("#%1").arg(list->cmobjCount()));
    if (list->append(this, owned.get())->isEmpty())
        return;
    orba::ModuleObject *added = owned.release();
    const orba::MobjPtr reply = tservice()->execCommand(this, QStringLiteral("tray.add_one"), added);
    if (!self || !m_pallets)
        return;
    if (reply->r(QStringLiteral("data.size"))->getInt(0) != m_pallets->size()) {
        tpallet::logError(QStringLiteral("import pallet add error!"));
        tpallet::recordCfgLog(tr("Tray %1 was not stored on the controller, it will be lost at the next reload!").arg(name),
                              true);
    }
}

void ImExportDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        m_ui->retranslateUi(this);
    QDialog::changeEvent(event);
}
