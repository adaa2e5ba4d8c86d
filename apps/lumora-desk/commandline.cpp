#include "apps/lumora-desk/commandline.h"

#include "lumora/qtsql/databaseerror.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <algorithm>

namespace lumora::desk {

using namespace Qt::StringLiterals;

namespace {

// "table" or "table:NAME" is a table of the database itself.
QueryPlace parseQueryPlace(const QString& text) {
    if (text == QLatin1StringView("table"))
        return {QueryPlace::Kind::Table, {}};
    if (text.startsWith(QLatin1StringView("table:")))
        return {QueryPlace::Kind::Table, text.mid(6)};
    return {QueryPlace::Kind::Folder, text};
}

// Qt takes these for itself once there is a screen.
QStringList withoutQtOptions(QStringList arguments) {
    static const QStringList withValue = {"platform", "style", "stylesheet", "geometry", "display"};
    for (qsizetype i = arguments.size() - 1; i > 0; --i) {
        const QString name = arguments[i].mid(arguments[i].startsWith("--"_L1) ? 2 : 1);
        const bool isOption = arguments[i].startsWith(u'-');
        if (isOption && withValue.contains(name))
            arguments.remove(i, std::min<qsizetype>(2, arguments.size() - i));
        else if (isOption && (name == "reverse"_L1 || withValue.contains(name.section(u'=', 0, 0))))
            arguments.removeAt(i);
    }
    return arguments;
}

} // namespace

CommandLine parseCommandLine(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("lumora::desk", "Asks a database questions without SQL."));
    parser.addPositionalArgument(
        "DATABASE", "An SQLite file, or a URL: postgresql://user@host:port/database.", "[DATABASE");
    parser.addPositionalArgument(
        "MODEL", "A data model file; without one the model is made from the database.", "[MODEL]]");
    const QCommandLineOption queries(
        "queries", "Where queries are kept: a folder, or table:NAME for a table of the database.", "BASE");
    parser.addOption(queries);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();

    CommandLine line;
    if (!parser.parse(withoutQtOptions(arguments))) {
        line.error = parser.errorText();
    } else if (parser.isSet(help)) {
        line.output = parser.helpText();
    } else if (parser.isSet(version)) {
        line.output = QStringLiteral("lumora-desk %1\n").arg(QCoreApplication::applicationVersion());
    } else if (const QStringList words = parser.positionalArguments(); words.size() > 2) {
        line.error = QStringLiteral("There is one database and one model at most");
    } else if (!words.isEmpty()) {
        try {
            line.open = OpenRequest{parseDatabase(words[0].toStdString()), words.value(1),
                                    parseQueryPlace(parser.value(queries))};
        } catch (const Exception& error) {
            line.error = QString::fromUtf8(error.what());
        }
    } else if (parser.isSet(queries)) {
        line.error = QStringLiteral("--queries needs a database");
    }
    return line;
}

} // namespace lumora::desk
