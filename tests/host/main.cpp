// A host that has files of the library's names, and uses both.
#include "lumora/lumora.h"

#include <cstdio>
#include <string_view>

#define HOST_INCLUDES_ITS_OWN
#include "panel/Vquerpnl.h"

int Narrowed(double value) {
    return value;
}

int main() {
    lumora::TVDBStructure model;
    model.LoadFromFile(HOST_MODEL);
    lumora::TVQueryPanel panel;
    panel.SetDbStruct(&model);
    panel.SetSQLOptions({});
    panel.Activate();
    panel.ParseSQL(lumora::TStringList("select customers.city from customers where customers.city = 'Oslo'"));
    panel.BuildQuery();
    const std::string sql = panel.GetQResult().GetSQL().GetText();
    std::printf("%d\n%s", host::Shown(), sql.c_str());
    const std::string_view expected = "SELECT customers.city\nFROM customers\nWHERE\n (\n"
                                      "customers.city = 'Oslo'\n)\n";
    return host::Shown() == Narrowed(111.5) && sql == expected ? 0 : 1;
}
