#include "Base/Undo/qvUndoGroup.h"

namespace qvUndo {

Group::Group(Manager*) {}

Group::~Group() = default;

} // namespace qvUndo
