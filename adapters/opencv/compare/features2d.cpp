#include "operation.h"

std::vector<Operation> features2dOperations()
{
    return {};
}
