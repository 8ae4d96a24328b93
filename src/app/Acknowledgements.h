#pragma once

#include <QString>

// The Credits tab's acknowledgements: one line per component Kelvaris stands
// on, joined by CR LF, no line break after the last.
QString AcknowledgementsText();

// The author's mail link, subject included.
QString AuthorMailLink();
