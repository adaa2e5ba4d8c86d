#include "lumora/widgets/fieldchooser.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace lumora {

namespace {

constexpr int fieldIDRole = Qt::UserRole;

void addFields(QStandardItem& parent, const TDSFieldList& fields) {
    for (const TDSField* const field : fields) {
        if (!field->UIR)
            continue;
        auto* const item = new QStandardItem(QString::fromStdString(field->GetDisplayName()));
        item->setData(field->GetID(), fieldIDRole);
        item->setEditable(false);
        if (const TDSTable* const table = field->GetTable())
            item->setToolTip(QString::fromStdString(table->GetDisplayName()));
        parent.appendRow(item);
    }
}

void addGroups(QStandardItem& root, const TDSFieldGroupList& groups) {
    for (int i = 0; i < groups.Count(); ++i) {
        const TDSFieldGroup& group = *groups.GetGroup(i);
        auto* const item = new QStandardItem(QString::fromStdString(group.GroupName));
        item->setFlags(Qt::ItemIsEnabled);
        QFont font = item->font();
        font.setBold(true);
        item->setFont(font);
        addFields(*item, group.Fields);
        if (item->hasChildren())
            root.appendRow(item);
        else
            delete item;
    }
}

} // namespace

FieldChooser::FieldChooser(QWidget* parent)
    : QFrame(parent, Qt::Popup),
      search_(new QLineEdit(this)),
      list_(new QTreeView(this)),
      fields_(new QStandardItemModel(this)),
      found_(new QSortFilterProxyModel(this)) {
    setFrameShape(QFrame::StyledPanel);
    search_->setPlaceholderText(tr("Search for a field"));
    search_->setClearButtonEnabled(true);
    search_->setAccessibleName(tr("Search for a field"));
    found_->setSourceModel(fields_);
    found_->setFilterCaseSensitivity(Qt::CaseInsensitive);
    found_->setRecursiveFilteringEnabled(true);
    found_->setAutoAcceptChildRows(true); // a group that is found shows all its fields
    list_->setModel(found_);
    list_->setHeaderHidden(true);
    list_->setRootIsDecorated(false);
    list_->setAccessibleName(tr("Fields"));
    list_->setUniformRowHeights(true);

    auto* const hint = new QLabel(tr("Each click adds a column; Escape closes."), this);
    hint->setForegroundRole(QPalette::PlaceholderText);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(search_);
    layout->addWidget(list_);
    layout->addWidget(hint);

    connect(search_, &QLineEdit::textChanged, this, &FieldChooser::filter);
    connect(list_, &QTreeView::clicked, this, &FieldChooser::choose);
    search_->installEventFilter(this);
    list_->installEventFilter(this);
}

void FieldChooser::setModel(const TVCustomDBStructure& model) {
    fields_->clear();
    QStandardItem& root = *fields_->invisibleRootItem();
    if (model.RootFieldsFirst)
        addFields(root, model.GetRootGroup().Fields);
    addGroups(root, model.GetFieldGroups());
    if (!model.RootFieldsFirst)
        addFields(root, model.GetRootGroup().Fields);
    search_->clear();
    list_->expandAll();
    selectFirstField();
}

void FieldChooser::popupAt(QWidget& anchor) {
    const QRect screen = anchor.screen()->availableGeometry();
    const int line = fontMetrics().height();
    resize(line * 20, std::min(line * 26, screen.height() * 2 / 3));
    QPoint place = anchor.mapToGlobal(QPoint(0, anchor.height()));
    place.setX(std::clamp(place.x(), screen.left(), std::max(screen.left(), screen.right() - width())));
    place.setY(std::clamp(place.y(), screen.top(), std::max(screen.top(), screen.bottom() - height())));
    move(place);
    search_->clear();
    show();
    search_->setFocus();
}

void FieldChooser::filter(const QString& text) {
    found_->setFilterFixedString(text.trimmed());
    list_->expandAll();
    selectFirstField();
}

void FieldChooser::selectFirstField() {
    QModelIndex index = found_->index(0, 0);
    while (index.isValid() && !index.data(fieldIDRole).isValid())
        index = list_->indexBelow(index);
    list_->setCurrentIndex(index);
}

void FieldChooser::choose(const QModelIndex& index) {
    if (const QVariant id = index.data(fieldIDRole); id.isValid())
        emit fieldChosen(id.toInt());
}

// The arrows move in the list while one types.
bool FieldChooser::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QFrame::eventFilter(watched, event);
    const auto& key = static_cast<QKeyEvent&>(*event);
    switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose(list_->currentIndex());
        search_->selectAll();
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        if (watched == search_) {
            QCoreApplication::sendEvent(list_, event);
            return true;
        }
        break;
    default:
        break;
    }
    return QFrame::eventFilter(watched, event);
}

} // namespace lumora
