#include "lumora/widgets/panelmenu.h"

#include <QActionGroup>
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

} // namespace lumora
