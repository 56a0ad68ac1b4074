#pragma once

#include <QCollator>

// Compares names the way people read them in the user's language: numbers by
// value ("File 2" before "File 10") and letters without regard to case.
QCollator naturalOrder();
