#include "lumora/widgets/dropdownpage.h"

#include "lumora/widgets/dropdowndatepage.h"
#include "lumora/widgets/dropdownlistpage.h"
#include "lumora/widgets/dropdowntextpage.h"

namespace lumora {

DropDownPage* makeDropDownPage(TDropDownEditor& editor, const QList<QIcon>& images, QWidget* parent) {
    switch (editor.GetKind()) {
    case ddList:
    case ddTree:
    case ddCheckList:
    case ddMenu:
        return new DropDownListPage(editor, images, parent);
    case ddDate:
    case ddTime:
    case ddDateTime:
        return new DropDownDatePage(editor, parent);
    default:
        return new DropDownTextPage(editor, parent);
    }
}

} // namespace lumora
