// Edit masks of the model as Qt's input masks.
#pragma once

#include <QString>

#include <string_view>

namespace lumora {

// An edit mask has up to three fields with ";" between them: the mask; whether the literals are part of the
// value ("0": they are not; "1", and anything else: they are); the character that stands where nothing was
// typed ("_"). In the mask
//   0 9    a digit, required or not          #      a digit or a sign, not required
//   L l    a letter, required or not         A a    a letter or digit, required or not
//   C c    any character but a blank, required or not
//   > <    what follows is put into upper or lower case; <> ends that
//   \      the next character stands for itself
//   / :    the separators of dates and times, as the formats say     _  a blank
// and all else stands for itself. A "!" at the beginning has no counterpart and is passed over.
struct InputMask {
    QString mask; // for QLineEdit::setInputMask; empty when the edit mask has no field to fill
    bool keepsLiterals = true;
};
InputMask toInputMask(std::string_view editMask);

// What was typed, without the literals of Qt's input mask.
QString withoutLiterals(const QString& displayText, const QString& inputMask);

} // namespace lumora
