#include "lumora/widgets/panelmenu.h"

#include <QActionGroup>
#include <QHash>
#include <QMenu>

#include <algorithm>

namespace lumora {

void fillMenu(QMenu& menu, const std::vector<TMenuItem>& items,
              const std::function<void(const TMenuItem&)>& choose) {
    // Where one item is checked, all of them are choices of one kind.
    const bool isChoice =
        std::any_of(items.begin(), items.end(), [](const TMenuItem& item) { return item.Checked; });
    QActionGroup* const group = isChoice ? new QActionGroup(&menu) : nullptr;
    for (const TMenuItem& item : items) {
        if (item.IsSeparator()) {
            menu.addSeparator();
            continue;
        }
        const QString caption = QString::fromStdString(item.Caption);
        if (item.IsSubMenu) {
            QMenu* const sub = menu.addMenu(caption);
            sub->setEnabled(item.Enabled);
            fillMenu(*sub, item.Items, choose);
            continue;
        }
        QAction* const action = menu.addAction(caption);
        action->setEnabled(item.Enabled);
        if (group) {
            action->setCheckable(true);
            action->setChecked(item.Checked);
            group->addAction(action);
        }
        QObject::connect(action, &QAction::triggered, &menu, [choose, item] { choose(item); });
    }
}

bool hasGroups(const TDropDownContent& content) {
    return std::any_of(content.Items.begin(), content.Items.end(),
                       [](const TDropDownItem& item) { return !item.Group.empty(); });
}

namespace {

// "&" is a letter here like any other.
QString plainCaption(const std::string& caption) {
    return QString::fromStdString(caption).replace(u'&', QLatin1StringView("&&"));
}

QIcon iconOf(const QList<QIcon>& images, int index) {
    return index >= 0 && index < images.size() ? images[index] : QIcon();
}

} // namespace

void fillChoices(QMenu& menu, const TDropDownContent& content, const QList<QIcon>& images,
                 const std::function<void(int item)>& choose) {
    QHash<QString, QMenu*> groups;
    auto* const choices = new QActionGroup(&menu);
    for (std::size_t i = 0; i < content.Items.size(); ++i) {
        const TDropDownItem& item = content.Items[i];
        QMenu* place = &menu;
        if (!item.Group.empty()) {
            QMenu*& group = groups[QString::fromStdString(item.Group)];
            if (!group) {
                group = menu.addMenu(plainCaption(item.Group));
                group->setIcon(iconOf(images, item.GroupImageIndex));
            }
            place = group;
        }
        QAction* const action = place->addAction(plainCaption(item.Caption));
        action->setIcon(iconOf(images, item.ImageIndex));
        action->setIconVisibleInMenu(true);
        const int index = static_cast<int>(i);
        if (index == content.CurrentItem) { // and where it is found
            choices->addAction(action);
            action->setCheckable(true);
            action->setChecked(true);
            menu.setActiveAction(place == &menu ? action : place->menuAction());
            place->setActiveAction(action);
        }
        QObject::connect(action, &QAction::triggered, &menu, [choose, index] { choose(index); });
    }
}

} // namespace lumora
