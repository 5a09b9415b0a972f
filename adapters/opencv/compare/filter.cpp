#include "operation.h"

std::vector<Operation> filterOperations()
{
    return {};
}
