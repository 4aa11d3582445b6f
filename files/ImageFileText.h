#pragma once

#include "files/ImageFile.h"

#include <string>

// What became of a file, as the end of a one-line message: no full stop.

std::string LoadReportText(const LoadReport& report);
std::string SaveReportText(const SaveReport& report);
