#pragma once

#include <QString>

// A 1920 x 1080 JPEG photo-like picture to load, made once per run in a
// temporary folder; KELVARIS_BENCH_JPEG names another one instead.
QString BenchJpeg();

// A temporary folder for the run's output.
QString BenchFolder();
