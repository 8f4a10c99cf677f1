#include "farm/enterprise_sync.h"

#include "config/globals.h"
#include "config/profile_store.h"

#include <utility>

namespace quillary::farm {

namespace {

EnterpriseComponent& Component() {
    static EnterpriseComponent component;
    return component;
}

} // namespace

void SetEnterpriseComponent(EnterpriseComponent component) {
    Component() = std::move(component);
}

void EnterpriseSync() {
    const auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    if (Component())
        Component()(*db);
    db->Close();
}

} // namespace quillary::farm
