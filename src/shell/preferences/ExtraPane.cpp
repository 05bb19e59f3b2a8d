#include "shell/preferences/SettingsView.h"

namespace tarvix {

Pane extraPane() {
    return {{{.title = {},
              .controls = {
                  Toggle{"Prevent scrolling when Tarvixing",
                         {"preventScrollingWhenTarvixing", false},
                         {{{},
                           "By default The Input will disappear if you're scrolling while you're Tarvixing. This "
                           "option completely freezes the scrolling. Mostly for the submissive ones, who like to be "
                           "controlled."}}},
                  Toggle{"Allow the copying of text and metadata with `⌘C` and co",
                         {"allowCopyingOfTextAndMetadata", false},
                         {{{},
                           "`⌘C` will copy the text of your Primary Target, while adding any other modifier key will "
                           "copy the relevant metadata if any. E.g.: for links `⌘C` copies the descriptive text, while "
                           "`⇧⌘C` copies the hidden URL metadata."}}},
                  Toggle{"Allow cycling through Targets",
                         {"allowCyclingThroughTargets", false},
                         {{{},
                           "By default Tarvix is pretty strict and doesn't let you navigate beyond the first and the "
                           "last Targets. Use this option if you'd rather consider the Targets as a big fat loop and "
                           "be able to cycle through them."}}},
                  Toggle{"Don't flush The Input",
                         {"dontFlushTheInput", false},
                         {{{},
                           "Not flushing The Input will reapply your last search as soon as you reactivate Tarvix. The "
                           "last search will be selected by default so that you can easily overwrite it if needed. Yes "
                           "Tarvix is that smart."}}},
                  Toggle{"Reposition the mouse after clicking when possible",
                         {"repositionMouseAfterClick", false},
                         {{{},
                           "Except for the App Menus (i.e. the left of the Menu Bar), Tarvix can move back your mouse "
                           "to its original location after clicking. Most of the time it looks like your mouse never "
                           "moved. Honestly, it feels like magic."}}},
                  Toggle{"Ignore Tabs and URL Bars in Safari",
                         {"ignoreSafariTabsAndURLs", false},
                         {{{},
                           "Useful if you're a Keyboard Master™ and have shortcuts for all those things. In that case "
                           "you'll want Tarvix to back off and focus mostly on the Web content instead."}}},
              }}}};
}

}  // namespace tarvix
