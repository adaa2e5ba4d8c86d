// What stands in a drop-down popup: one class of page for each way to enter a value.
#pragma once

#include "lumora/controls/drop_down_editor.h"

#include <QIcon>
#include <QList>
#include <QWidget>

class QKeyEvent;

namespace lumora {

class DropDownPage : public QWidget {
    Q_OBJECT

public:
    // The editor is the popup's and outlives the page.
    DropDownPage(TDropDownEditor& editor, QWidget* parent) : QWidget(parent), editor_(editor) {}

    // What has the keyboard first.
    virtual QWidget* input() const = 0;
    // Keys that one part of the page takes for another; true when it was one.
    virtual bool handleKey(QWidget* /*receiver*/, QKeyEvent* /*event*/) { return false; }
    // Hands the editor what is shown, before it is accepted.
    virtual void commit() {}
    // Why the page itself cannot give a value yet; empty when it can.
    virtual QString refusal() const { return {}; }

signals:
    void chosen(); // this is it: accept now
    void edited();

protected:
    TDropDownEditor& editor_;
};

// The page for the editor's kind, `images` being what the items' ImageIndex refers to.
DropDownPage* makeDropDownPage(TDropDownEditor& editor, const QList<QIcon>& images, QWidget* parent);

} // namespace lumora
