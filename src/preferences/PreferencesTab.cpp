#include "preferences/PreferencesTab.h"

using namespace Qt::StringLiterals;

namespace PreferencesTabs {

const Face &face(PreferencesTab tab) {
    const auto colour = QColor::fromRgbF;
    static const std::array<Face, allCases.size()> faces{{
        {u"General"_s, Symbol::Gear, colour(0.52F, 0.74F, 0.96F, 1),
         colour(0.17F, 0.36F, 0.64F, 1)},
        {u"Jira"_s, Symbol::Checklist, colour(0.96F, 0.81F, 0.49F, 1),
         colour(0.70F, 0.46F, 0.12F, 1)},
        {u"Confluence"_s, Symbol::Document, colour(0.55F, 0.80F, 0.78F, 1),
         colour(0.10F, 0.42F, 0.40F, 1)},
        {u"ID Links"_s, Symbol::Person, colour(0.78F, 0.70F, 0.94F, 1),
         colour(0.42F, 0.28F, 0.66F, 1)},
        {u"Connection"_s, Symbol::Key, colour(0.94F, 0.73F, 0.84F, 1),
         colour(0.60F, 0.17F, 0.38F, 1)},
    }};
    return faces.at(static_cast<size_t>(tab));
}

} // namespace PreferencesTabs
