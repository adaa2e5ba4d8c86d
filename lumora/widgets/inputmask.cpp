#include "lumora/widgets/inputmask.h"

#include "lumora/platform/formats.h"

#include <QStringList>

namespace lumora {

namespace {

// What of Qt's masks takes a character, by what of an edit mask does.
QChar fieldOf(QChar c) {
    static const QString from = QStringLiteral("09LlAaCc#");
    static const QString to = QStringLiteral("90AaNnXx#");
    const qsizetype i = from.indexOf(c);
    return i < 0 ? QChar() : to[i];
}

// The fields of the edit mask; a ";" after a backslash divides nothing.
QStringList fieldsOf(const QString& editMask) {
    QStringList fields{QString()};
    for (qsizetype i = 0; i < editMask.size(); ++i) {
        if (editMask[i] == '\\' && i + 1 < editMask.size() && fields.size() == 1)
            fields.last() += editMask.mid(i++, 2);
        else if (editMask[i] == ';' && fields.size() < 3)
            fields.append(QString());
        else
            fields.last() += editMask[i];
    }
    return fields;
}

class MaskTranslator {
public:
    explicit MaskTranslator(const QString& mask) : mask_(mask) {}

    // Empty when there is no field to fill.
    QString translate() {
        for (; at_ < mask_.size(); ++at_)
            takeCharacter(mask_[at_]);
        return hasFields_ ? out_ : QString();
    }

private:
    void takeCharacter(QChar c) {
        if (const QChar field = fieldOf(c); !field.isNull()) {
            out_ += field;
            hasFields_ = true;
        } else if (c == '\\' && at_ + 1 < mask_.size()) {
            literal(mask_.mid(++at_, 1));
        } else if (c == '<' && mask_.mid(at_ + 1, 1) == QStringLiteral(">")) {
            ++at_;
            out_ += '!';
        } else if (c == '<' || c == '>') {
            out_ += c;
        } else if (c == '/') {
            literal(QString::fromStdString(FormatSettings().DateSeparator));
        } else if (c == ':') {
            literal(QString::fromStdString(FormatSettings().TimeSeparator));
        } else if (c == '_') {
            literal(QStringLiteral(" "));
        } else if (c != '!') {
            literal(QString(c));
        }
    }
    void literal(const QString& text) {
        for (const QChar c : text)
            out_.append('\\').append(c);
    }

    QString mask_;
    QString out_;
    qsizetype at_ = 0;
    bool hasFields_ = false;
};

} // namespace

InputMask toInputMask(std::string_view editMask) {
    const QStringList fields =
        fieldsOf(QString::fromUtf8(editMask.data(), static_cast<qsizetype>(editMask.size())));
    InputMask result;
    result.mask = MaskTranslator(fields[0]).translate();
    result.keepsLiterals = fields.size() < 2 || fields[1].trimmed() != QStringLiteral("0");
    const QChar blank = fields.size() < 3 || fields[2].isEmpty() ? QChar('_') : fields[2][0];
    if (!result.mask.isEmpty())
        result.mask.append(';').append(blank);
    return result;
}

QString withoutLiterals(const QString& displayText, const QString& inputMask) {
    const QString mask = inputMask.left(inputMask.size() - 2);
    const QChar blank = inputMask.isEmpty() ? QChar() : inputMask.back();
    QString result;
    qsizetype at = 0;
    for (qsizetype i = 0; i < mask.size() && at < displayText.size(); ++i) {
        if (mask[i] == '>' || mask[i] == '<' || mask[i] == '!')
            continue;
        if (mask[i] == '\\')
            ++i;
        else if (displayText[at] != blank)
            result += displayText[at];
        ++at;
    }
    return result;
}

} // namespace lumora
