#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

// Small, tolerant readers for the few values Kelvaris needs from the files of
// game launchers (Lutris and Bottles YAML, Steam's VDF). They read a handful
// of keys line by line and never fail on the rest: a malformed file simply
// yields no value.

// A launcher file of at most 1 MiB that is a regular file (or a link to
// one); nothing otherwise. Never waits on a FIFO or a device.
std::optional<QByteArray> ReadLauncherFile(const QString& path);

// The scalar of `key` in a YAML mapping: at the top level when `section` is
// empty ("Runner: caffe-7.20"), else one level inside the top-level mapping
// `section` ("game:" then "  prefix: /home/p/Games/coh"). Quotes around the
// value and a trailing " #" comment are removed. "" when absent, when the
// value is not a plain one-line scalar, or when the text is not YAML at all.
QString YamlValue(const QByteArray& text, const QString& section, const QString& key);

// Every "path" value of a Steam libraryfolders.vdf, in file order, with the
// VDF escapes ("\\", "\"") undone.
QStringList VdfPathValues(const QByteArray& text);

// A path from a launcher file with a leading "~" or "$HOME" made the home
// folder; "" stays "".
QString ExpandHome(const QString& path);

// The executable file at `path`, or "" when there is none there.
QString ExecutableOrEmpty(const QString& path);
