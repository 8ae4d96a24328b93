#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// Argument lists written as one text for programs that read them back with
// their own quoting rules, so each argument arrives exactly as it was given.

// The arguments as words of a POSIX shell command: a word that holds
// anything but letters, digits and "-_./:=+,@%" is put in single quotes (a
// single quote in it written as '\''), an empty argument as ''.
QString ShellQuoted(const QStringList& arguments);

// The value of a desktop entry's Exec key that starts `words` (the program
// first): a word that is empty or holds a reserved character is put in
// double quotes with '"', '`', '$' and '\' escaped by a backslash; then "%"
// is written "%%" and the string escapes of the file are applied ("\\",
// "\n", "\t"). Nothing when a word holds another control character (a
// carriage return, a NUL), which no launcher would pass on as it stands.
std::optional<QString> DesktopExecValue(const QStringList& words);
