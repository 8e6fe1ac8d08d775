#include "Base/Utility/qvUtilError.h"

int main() { return qvUtil::Error(0, "") ? 1 : 0; }
