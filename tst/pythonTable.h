// python/package/pictures.txt, made from the descriptors of the test groups.
#pragma once

#include <string>

std::string pythonTable();
