#include "operation.h"

std::vector<Operation> geometryOperations()
{
    return {};
}
