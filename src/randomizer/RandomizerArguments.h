#pragma once

#include <QStringList>

// The arguments a randomizer run hands on to the chat client: the tool's own
// arguments with the first "-randomizer" cut out and then the first
// "-skipupdate" (each in lower case only). A switch is cut from the first
// argument that holds it; an argument that was nothing but the switch goes
// with it, and every other argument (an empty one, one with quotes or
// blanks, a later copy of a switch) is handed on exactly as given.
QStringList PassThroughArguments(const QStringList& arguments);
