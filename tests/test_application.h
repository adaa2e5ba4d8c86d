// The application object that Qt's drivers need.
#pragma once

#include <QCoreApplication>

namespace lumora::tests {

class TestApplication {
    int argumentCount_ = 1;
    char name_[5] = "test";
    char* arguments_[2] = {name_, nullptr};
    const QCoreApplication application_{argumentCount_, arguments_};
};

} // namespace lumora::tests
