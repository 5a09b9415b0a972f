// docs/functions.md, made from the descriptors of the test groups.
#pragma once

#include <string>

std::string functionsPage();
