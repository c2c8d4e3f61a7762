#include "shelltheme.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QTableView>

// The arrows of the style sheet are in the shell's resources, a static library's: registered by hand.
static void initThemeResources()
{
    Q_INIT_RESOURCE(pendant);
}

namespace shelltheme {

namespace {

// Shell frame first, then what every window of the application gets (dialogs, message boxes,
// fields, lists). A widget's own style sheet wins over these wherever both set the same property.
const char *StyleSheet = R"(
QWidget { font-size: 16px; }
MainWindow, #jogWindow { background: #1f2329; }
#statusBar, #treeNav, #pageHeader, #lstLog, #jogPanel { color: #e6e9ee; }
#statusBar QLabel, #pageHeader QLabel, #jogPanel QLabel { color: #e6e9ee; }
#statusBar { background: #14171b; border-bottom: 2px solid #2f80ed; }
#lblTitle { font-size: 20px; font-weight: bold; color: #ffffff; padding-right: 16px; }
#statusBar #lblRcId { color: #9aa4b1; }
#treeNav { background: #262b32; border: none; font-size: 16px; show-decoration-selected: 1; }
#treeNav::item { min-height: 46px; padding-left: 6px; color: #e6e9ee; }
#treeNav::item:selected, #treeNav::branch:selected { background: #2f80ed; color: white; }
#treeNav::branch { image: none; border-image: none; }
#pageHeader { background: #262b32; }
#lblPageTitle { font-size: 17px; font-weight: bold; padding: 6px 10px; }
#centerWidget, #pageScroll, #pageScroll > QWidget > QWidget { background: #f3f4f6; }
#pageScroll { border: none; }
#centerWidget QPushButton { color: #ffffff; background: #3a414b; border: 1px solid #4b5461; border-radius: 6px; padding: 6px 6px; min-height: 36px; font-size: 15px; }
#centerWidget QPushButton:pressed { background: #2f80ed; }
#centerWidget QPushButton:disabled { color: #8a929c; background: #555c66; }
#homePage QLabel { color: #1f2329; font-size: 16px; }
#lstLog { background: #14171b; border: none; border-top: 1px solid #3a414b; font-size: 14px; }
#lstLog::item { min-height: 18px; }
#jogPanel { background: #262b32; border-left: 1px solid #3a414b; }
#jogPanel #lblJogTitle { font-size: 18px; font-weight: bold; }
#frmPosture { background: #14171b; border-radius: 6px; }
#jogPanel #frmPosture QLabel { font-family: monospace; font-size: 14px; }
#jogPanel #lblJogStatus { color: #ffb454; }
#jogPanel #lblJogCaption { color: #9aa4b1; font-size: 13px; }
#statusBar QPushButton, #pageHeader QPushButton, #jogPanel QPushButton { color: #e6e9ee; background: #3a414b; border: 1px solid #4b5461; border-radius: 6px; padding: 6px 12px; min-height: 32px; }
#jogPanel QPushButton { min-height: 26px; }
#statusBar QPushButton:pressed, #statusBar QPushButton:checked, #pageHeader QPushButton:checked, #jogPanel QPushButton:pressed { background: #2f80ed; }
#statusBar QPushButton:disabled { color: #6b7480; }

QDialog, QMessageBox { background: #262b32; }
QDialog QLabel, QDialog QCheckBox, QDialog QRadioButton, QDialog QGroupBox, QMessageBox QLabel { color: #e6e9ee; }
#lblMsgTitle { font-size: 20px; font-weight: bold; }
#lblMsgText { font-size: 18px; }
QDialog QPushButton, QMessageBox QPushButton { color: #ffffff; background: #3a414b; border: 1px solid #4b5461; border-radius: 6px; padding: 6px 14px; min-height: 36px; }
QDialog QPushButton:pressed, QDialog QPushButton:checked, QMessageBox QPushButton:pressed { background: #2f80ed; }
QDialog QPushButton:disabled, QMessageBox QPushButton:disabled { color: #8a929c; background: #555c66; }
QDialog QPushButton:default, QMessageBox QPushButton:default { border: 2px solid #2f80ed; }
QProgressBar { color: #e6e9ee; background: #14171b; border: 1px solid #4b5461; border-radius: 4px; text-align: center; min-height: 24px; }
QProgressBar::chunk { background: #2f80ed; border-radius: 3px; }
QMenu { color: #e6e9ee; background: #262b32; border: 1px solid #4b5461; }
QMenu::item { padding: 8px 24px; }
QMenu::item:selected { background: #2f80ed; }

QLineEdit, QAbstractSpinBox { color: #ffffff; background: #14171b; border: 1px solid #4b5461; border-radius: 4px; padding: 2px 8px; min-height: 36px; selection-background-color: #2f80ed; }
QLineEdit:focus, QAbstractSpinBox:focus { border-color: #2f80ed; }
QLineEdit:disabled, QAbstractSpinBox:disabled { color: #8a929c; background: #2a2f36; }
QAbstractSpinBox[touchArrows="true"] { padding-right: 80px; }
QAbstractSpinBox::up-button, QAbstractSpinBox::down-button { subcontrol-origin: border; subcontrol-position: center right; width: 38px; height: 36px; background: #3a414b; border: none; border-left: 1px solid #4b5461; }
QAbstractSpinBox::down-button { right: 39px; }
QAbstractSpinBox::up-button:pressed, QAbstractSpinBox::down-button:pressed { background: #2f80ed; }
QAbstractSpinBox::up-button:disabled, QAbstractSpinBox::down-button:disabled { background: #2a2f36; }
QAbstractSpinBox::up-arrow { image: url(:/pendant/arrow-up.xpm); width: 14px; height: 8px; }
QAbstractSpinBox::down-arrow { image: url(:/pendant/arrow-down.xpm); width: 14px; height: 8px; }

QComboBox { color: #ffffff; background: #3a414b; border: 1px solid #4b5461; border-radius: 6px; padding: 4px 10px; min-height: 36px; }
QComboBox:disabled { color: #8a929c; background: #555c66; }
QComboBox::drop-down { border: none; width: 32px; }
QComboBox::down-arrow { image: url(:/pendant/arrow-down.xpm); width: 14px; height: 8px; }
QComboBox QAbstractItemView { color: #e6e9ee; background: #262b32; border: 1px solid #4b5461; selection-background-color: #2f80ed; outline: none; }
QComboBox QAbstractItemView::item { min-height: 40px; padding: 0px 8px; }

QListView::item, QTreeView::item { min-height: 36px; }
QTableView { selection-background-color: #2f80ed; selection-color: #ffffff; }
QHeaderView::section { min-height: 36px; padding: 0px 6px; }
)";

} // namespace

QString styleSheet()
{
    return QString::fromLatin1(StyleSheet);
}

void apply()
{
    static bool applied = false;
    if (applied || !qApp)
        return;
    applied = true;
    initThemeResources();
    qApp->setStyleSheet(styleSheet());
    qApp->installEventFilter(new TouchPolisher(qApp));
}

} // namespace shelltheme

TouchPolisher::TouchPolisher(QObject *parent)
    : QObject(parent)
{
}

bool TouchPolisher::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show || event->type() == QEvent::Polish) {
        if (auto *combo = qobject_cast<QComboBox *>(watched)) {
            // Qt's own popup delegate draws menu-sized entries whatever the style sheet says; the
            // standard delegate follows "QComboBox QAbstractItemView::item { min-height }".
            QAbstractItemDelegate *delegate = combo->itemDelegate();
            if (delegate && (delegate->inherits("QComboMenuDelegate") || delegate->inherits("QComboBoxDelegate")))
                combo->setItemDelegate(new QStyledItemDelegate(combo));
        }
        if (auto *spin = qobject_cast<QAbstractSpinBox *>(watched)) {
            // Only spin boxes that show arrows make room for the two large ones.
            const bool arrows = spin->buttonSymbols() != QAbstractSpinBox::NoButtons;
            const QVariant marked = spin->property("touchArrows");
            if (!marked.isValid() || marked.toBool() != arrows) {
                spin->setProperty("touchArrows", arrows);
                spin->style()->unpolish(spin);
                spin->style()->polish(spin);
            }
        }
        if (auto *table = qobject_cast<QTableView *>(watched)) {
            QHeaderView *rows = table->verticalHeader();
            rows->setMinimumSectionSize(qMax(rows->minimumSectionSize(), shelltheme::MinTouch));
            if (rows->defaultSectionSize() < shelltheme::TableRowHeight)
                rows->setDefaultSectionSize(shelltheme::TableRowHeight);
        }
    }
    return QObject::eventFilter(watched, event);
}
