#include "word_names.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace bench {

namespace {

constexpr auto kWords = std::to_array<std::string_view>({
    "Amber",    "Anchor",   "Apple",    "April",     "Arrow",    "Ashes",     "Atlas",
    "Attic",    "Autumn",   "Avenue",   "Balloon",   "Barn",     "Basalt",    "Beacon",
    "Bell",     "Birch",    "Blanket",  "Blue",      "Boat",     "Bonfire",   "Border",
    "Bottle",   "Branch",   "Brass",    "Bread",     "Brick",    "Bridge",    "Broken",
    "Brother",  "Button",   "Café",     "Canal",     "Candle",   "Canyon",    "Carousel",
    "Cellar",   "Chalk",    "Cherry",   "Chimney",   "Cinder",   "Circle",    "Clay",
    "Clock",    "Cloud",    "Clover",   "Coal",      "Cobalt",   "Comet",     "Copper",
    "Corner",   "Cotton",   "Crooked",  "Crow",      "Crystal",  "Curtain",   "Dancing",
    "Dawn",     "Déjà",     "Delta",    "Desert",    "Diamond",  "Distant",   "Drum",
    "Dust",     "Early",    "Echo",     "Eleven",    "Ember",    "Empty",     "Engine",
    "Evening",  "Falling",  "Farewell", "Feather",   "Fence",    "Fern",      "Ferry",
    "Fiddle",   "Fifteen",  "Fire",     "Flood",     "Flügel",   "Forest",    "Forgotten",
    "Fountain", "Fox",      "Friday",   "Frost",     "Garden",   "Ghost",     "Glass",
    "Golden",   "Granite",  "Gravel",   "Green",     "Hammer",   "Harbour",   "Harvest",
    "Hazel",    "Heather",  "Heavy",    "Hidden",    "Highway",  "Hollow",    "Honey",
    "Horizon",  "House",    "Hundred",  "Island",    "Ivory",    "January",   "Journey",
    "Juniper",  "Kettle",   "Kite",     "Ladder",    "Lake",     "Lantern",   "Last",
    "Leaving",  "Lemon",    "Letter",   "Lichtung",  "Light",    "Little",    "Lonely",
    "Long",     "Lucky",    "Maple",    "Marble",    "March",    "Marsh",     "Meadow",
    "Memory",   "Midnight", "Mill",     "Mirror",    "Monday",   "Moon",      "Morning",
    "Mountain", "Narrow",   "Needle",   "Never",     "Night",    "Nobody",    "North",
    "Oak",      "Ocean",    "October",  "Old",       "Orange",   "Orchard",   "Paper",
    "Parade",   "Pebble",   "Pepper",   "Pilot",     "Plain",    "Plum",      "Postcard",
    "Quarter",  "Quiet",    "Railway",  "Rain",      "Raven",    "Red",       "Return",
    "Ribbon",   "River",    "Road",     "Robin",     "Rooftop",  "Rope",      "Saffron",
    "Sailor",   "Salt",     "Sand",     "Saturday",  "Season",   "Second",    "Secret",
    "Seven",    "Shadow",   "Signal",   "Silver",    "Sleeping", "Slow",      "Smoke",
    "Snow",     "South",    "Sparrow",  "Spring",    "Station",  "Stone",     "Storm",
    "Summer",   "Sunday",   "Swallow",  "Telegraph", "Thirteen", "Thistle",   "Thunder",
    "Tide",     "Timber",   "Tower",    "Train",     "Tree",     "Tunnel",    "Umbrella",
    "Valley",   "Velvet",   "Violet",   "Waiting",   "Walking",  "Water",     "Willow",
    "Window",   "Winter",   "Wire",     "Wooden",    "Yellow",   "Yesterday", "Zeppelin",
});
constexpr auto kWordCount = static_cast<std::uint32_t>(kWords.size());

}  // namespace

std::string randomName(Random& random, std::uint32_t count) {
  std::string name(kWords[random.below(kWordCount)]);
  for (std::uint32_t i = 1; i < count; ++i) (name += ' ') += kWords[random.below(kWordCount)];
  return name;
}

std::string distinctName(std::uint32_t number) {
  // Neighbouring numbers share no word; what is added depends on the rest of the number only, so
  // that no two numbers meet.
  const std::uint32_t first = number % kWordCount;
  const std::uint32_t rest = number / kWordCount;
  std::string name(kWords[first]);
  (name += ' ') += kWords[(rest % kWordCount + 89 * first) % kWordCount];
  if (rest >= kWordCount) (name += ' ') += kWords[rest / kWordCount % kWordCount];
  return name;
}

std::string lateDifferingName(std::uint32_t number) {
  constexpr std::string_view kDigits =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  std::string name = "Concerto for two violins, strings and continuo, movement no.";
  name.resize(60, ' ');
  for (int i = 0; i < 4; ++i) {
    name += kDigits[number % kDigits.size()];
    number /= static_cast<std::uint32_t>(kDigits.size());
  }
  return name;
}

}  // namespace bench
