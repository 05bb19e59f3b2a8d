#include "shell/preferences/SettingsView.h"

namespace tarvix {

Pane positionPane() {
    return {{{.title = {},
              .controls = {
                  picker<InputPosition>("Show The Input™:", {"inputPosition", InputPosition::aboveWindow}),
              }}}};
}

}  // namespace tarvix
