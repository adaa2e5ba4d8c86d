// What Qt needs to find its drivers.
#pragma once

#include <QCoreApplication>

#include <clocale>

namespace lumora::cli {

// Qt asks for an application object before it looks for its drivers, and gives it the command line and the
// user's locale; we want neither.
class QtApplication {
public:
    QtApplication() : application_(argumentCount_, arguments_) { std::setlocale(LC_ALL, "C"); }

private:
    int argumentCount_ = 1;
    char name_[7] = "lumora";
    char* arguments_[2] = {name_, nullptr};
    QCoreApplication application_;
};

} // namespace lumora::cli
