#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "inventory/playlist.h"
#include "inventory/title_store.h"
#include "inventory/track_index.h"
#include "inventory/track_list_iterator.h"
#include "tree/arena.h"
#include "tree/track.h"

namespace Orvane {

// The listener's inventory in memory: every track and playlist, and the indexes from which the menu
// categories are derived.
//
// Owns whatever is registered with it, also what has been removed or cleared since: pointers handed
// out stay good until the manager is destroyed. No operation reports an error; unknown ids are
// ignored.
class TrackManager {
 public:
  TrackManager();
  TrackManager(const TrackManager&) = delete;
  TrackManager& operator=(const TrackManager&) = delete;
  virtual ~TrackManager();

  // Takes the track out of every playlist and withdraws its media id. With a second track of that
  // id registered, the id is gone all the same.
  virtual void removeTrack(const Track* track);
  virtual void removeTrackById(std::uint32_t mediaId);

  virtual bool containsTrack(const Track& track) const;
  virtual bool hasTrack(std::uint32_t mediaId) const;

  // Make and register a track or a playlist; the texts are copied, but see takeTitlesIn().
  virtual Track* addTrack(std::string_view title, std::uint32_t mediaId,
                          std::string_view artistName, std::uint32_t artistId,
                          std::string_view albumName, std::uint32_t albumId,
                          std::string_view genreName, std::uint32_t genreId, std::uint32_t rating);
  virtual Playlist* addPlaylist(std::string_view name);

  virtual Playlist* addPlaylist(std::string_view name, std::uint32_t playlistId);

  // Titles may be put into the store before addTrack() is called with them, also by other threads
  // and meanwhile. Until the next call of takeTitlesIn(), addTrack() makes no copy of a title
  // within `titles`, which have to be in the store.
  TitleStore& getTitleStore() { return titleStore_; }
  void takeTitlesIn(std::string_view titles) { titlesToTake_ = titles; }

  // Says that about so many tracks will be added. Unless all media ids count up, there will be room
  // for theirs, if there is memory: 11 to 21 bytes each.
  void expectTracks(std::size_t count) { index_->expect(count); }

  // Asks, in three steps from 0 on, each in time for the next, for what adding a track with these
  // ids looks at. Not for several threads: it remembers what it finds.
  void expectTrack(const TrackIds& ids, int step) const { index_->expect(ids, step); }

  // Says that tracks with these media ids will be looked for next.
  void expectLookups(std::span<const std::uint32_t> mediaIds) const {
    index_->expectLookups(mediaIds);
  }

  // Takes every occurrence of it out of the playlists.
  virtual void removePlaylist(const Playlist* playlist);

  // Withdraw a category's id: its entries from that category, the tracks that had them from the
  // other two of artists, albums and genres, and every track with that id from every playlist. The
  // tracks stay in the track list, under their media ids and their ratings.
  virtual void removeGenre(std::uint32_t genreId);
  virtual void removeArtist(std::uint32_t artistId);
  virtual void removeAlbum(std::uint32_t albumId);

  // Forgets all tracks and playlists, but goes on owning them.
  virtual void clear();

  // Registers what the caller made with `new`, owns it from then on and indexes it as it stands.
  // The first track of a media id is the one that counts: later ones are owned, but in no index. A
  // playlist registered twice stands in the list twice. True when it wasn't registered before; a
  // track or playlist must not be registered with two managers. A track's album, and all that this
  // refers to, must outlive the manager: other tracks may come to share it.
  virtual bool registerTrack(Track* track);
  virtual bool registerPlaylist(Playlist* playlist);

  // All tracks in registration order, one a media id.
  TrackListIterator tracksBegin() const { return {*index_, 0}; }
  TrackListIterator tracksEnd() const { return {*index_, index_->listSize()}; }

  // All playlists in registration order.
  auto playlistsBegin() const { return playlists_.begin(); }
  auto playlistsEnd() const { return playlists_.end(); }

  // The first track registered with that media id, or nullptr.
  const Track* findTrack(std::uint32_t mediaId) const { return index_->find(mediaId); }

  // Makes room for menus: tracks stay in all lists and orders, but are not found by their media ids
  // any more. Until clear(), none may be registered or removed.
  void forgetIds() { index_->forgetIds(); }

  // Forgets all entries and names of a category, that of &TrackIndex::getArtists, say.
  void forgetCategory(CategoryIndex& (TrackIndex::*category)()) { ((*index_).*category)().clear(); }

  // The same of all categories, with what they have together.
  void forgetCategories() { index_->forgetCategories(); }

  // How many of the tracks containsTrack() accepts.
  std::size_t countRegisteredTracks(const std::vector<const Track*>& tracks) const;

  const TrackIndex& getIndex() const { return *index_; }

 private:
  // An id with the name that came with it.
  struct Given {
    std::uint32_t id;
    std::string_view name;

    bool is(const NamedId& other) const { return other.id() == id && other.name() == name; }
  };

  std::string_view keepTitle(std::string_view title);
  template <typename Named, typename... Rest>
  const Named& make(const Given& given, const Rest&... rest);
  const NamedId& keep(const CategoryIndex& category, const Given& given);
  const Album& keepAlbum(const Given& album, const Given& artist, const Given& genre);
  template <typename Condition>
  void removeFromPlaylists(Condition condition);
  void removeCategory(CategoryIndex& category, std::uint32_t id,
                      std::uint32_t (Track::*idOf)() const);

  std::string_view titlesToTake_;  // in titleStore_
  std::vector<Playlist*> playlists_;
  std::unique_ptr<TrackIndex> index_;

  // The owners. Each holds a record once: records remember that they are registered. What addTrack
  // makes is in the arenas: tracks, one right behind the other (see TrackTable), their titles, and
  // the names, which are looked at again and again and so must stand close together.
  Arena ownTracks_;
  Arena ownTitles_;
  TitleStore titleStore_;
  Arena ownNames_;
  std::vector<std::unique_ptr<Track>> trackSet_;
  std::vector<std::unique_ptr<Playlist>> playlistSet_;
};

}  // namespace Orvane
