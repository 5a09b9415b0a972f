#include "operation.h"

std::vector<Operation> colorOperations()
{
    return {};
}
