// What the program has open: a database, its model, the query that is being made, and the base of saved ones.
#pragma once

#include "apps/lumora-desk/databaseopener.h"
#include "apps/lumora-desk/statement.h"
#include "lumora/lumora.h"
#include "lumora/qtsql/databaseconnection.h"
#include "lumora/querybase/stored_base.h"

#include <QObject>
#include <QString>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumora::desk {

// The statement of the query as it is, or a sentence that says what keeps it from being one.
struct BuiltStatement {
    QString sql;
    QString problem;
};

// A parameter that the statement leaves open.
struct AskedParameter {
    QString name;
    QString caption; // what to ask for
    TFieldType type = ftString;
};

struct ParameterValue {
    QString name;
    QString value;
};

// A failure of any operation is an exception, and leaves everything as it was.
class DeskDocument : public QObject {
    Q_OBJECT

public:
    explicit DeskDocument(QObject* parent = nullptr);
    ~DeskDocument() override;

    // Takes the place of what was open; unsaved changes are lost. Raises when its queries cannot be read.
    void adopt(OpenedDatabase database);
    void close();
    bool isOpen() const { return source_ != nullptr; }
    const OpenRequest& request() const;
    QString title() const; // of the database
    TVDBStructure* model() const;
    TVQueryPanel& panel() { return *panel_; }

    // --- The query. Unsaved changes of the current one are lost when another becomes current.
    TVStoredQueryBase* queries() const;
    int currentIndex() const; // -1: none
    QString queryName() const;
    bool isModified() const { return modified_; }
    bool isStored(int index) const;
    void selectQuery(int index);
    void newQuery();
    // EVQueryBaseError with qbeConflict, unless `force`, when somebody else changed what is stored.
    void save(bool force = false);
    void saveAs(const QString& name);
    void revert();
    // The current query is saved by that.
    void rename(const QString& name, bool force = false);
    // The stored query under a free name, which becomes current.
    void duplicate(int index);
    void erase(int index, bool force = false);
    void setDescription(const QString& text);
    QString description() const;
    // The text is read into a panel of its own first; EVQueryPanelError, ESQLParserError.
    void readSql(const QString& sql);
    void setDistinct(bool on);
    bool isDistinct() const { return panel_->GetSQLOptions().Contains(soSelectDistinct); }

    // --- The statement.
    BuiltStatement build();
    std::vector<AskedParameter> parameters();
    // What runs. The values of all parameters are asked for first.
    Statement statement(const std::vector<ParameterValue>& values);

signals:
    void opened(); // or closed
    void queryListChanged();
    void currentQueryChanged(); // another one, or read anew
    void currentQueryRenamed(); // or stored under another name; it says what it said
    void queryChanged();        // its rows, columns, options or description
    void modifiedChanged(bool modified);

private:
    struct Source;
    class Listener;

    void preparePanel(TVQueryPanel& panel) const;
    std::unique_ptr<TVQueryPanel> copyOfPanel();
    TStringList panelText();
    TVStoredQueryItem& item(int index) const;
    void forgetQuery();
    void makeCurrent(int index);
    void checkContent(int index);
    void dropUnstored(const TVQueryItem* except);
    void startOver();
    void markSaved();
    void panelChanged();
    void updateModified();
    QString freeName(const QString& name) const;

    std::unique_ptr<Source> source_;
    std::unique_ptr<TVQueryPanel> panel_;
    std::unique_ptr<Listener> listener_;
    std::string savedText_;
    bool modified_ = false;
    bool quiet_ = false; // changes are ours, and told at their end
};

// The message of a failure as a sentence for a person.
QString sentence(const std::exception& error);

} // namespace lumora::desk
