#include "Base/OS/qvOSLinkedListNode.h"

namespace qvOS {

LinkedListNode::~LinkedListNode() = default;

} // namespace qvOS
