#pragma once

// Everything that a page needs of this room.
#include "platform/controls/buttons.h"
#include "platform/controls/data_control.h"
#include "platform/controls/date_picker.h"
#include "platform/controls/form.h"
#include "platform/controls/form_host.h"
#include "platform/controls/grid.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"
#include "platform/controls/menu.h"
#include "platform/controls/panel.h"
#include "platform/controls/picture_box.h"
#include "platform/controls/qyx_array.h"
#include "platform/controls/tab_strip.h"
#include "platform/controls/text_box.h"
#include "platform/controls/up_down.h"
