#pragma once

#include <string>
#include <utility>

#include "embedded/project.h"

/// Builds the plain data of a project entry by entry, for tests of how it is shown.
class ProjectBuilder {
  public:
    embedded::Project project = embedded::empty_project();

    embedded::Id folder(embedded::Id parent, std::string name) {
        return item(parent, std::move(name), embedded::ItemKind::folder, 0);
    }

    /// 100x50, square pixels, 10 frames at 25 frames a second.
    embedded::Composition& composition(embedded::Id parent, std::string name) {
        embedded::Composition made;
        made.id = static_cast<embedded::Id>(project.compositions.size() + 1);
        made.item = item(parent, std::move(name), embedded::ItemKind::composition, made.id);
        made.width = 100;
        made.height = 50;
        made.pixel_aspect = {100, 100};
        made.duration = {10, 25};
        made.frame_rate = {2500, 100};
        return project.compositions.emplace_back(made);
    }

    /// An RGBA still of 8 bits, interpreted as the kinds of a new record say.
    embedded::Footage& footage(embedded::Id parent, std::string name, embedded::FootageKind kind) {
        embedded::Footage made;
        made.id = static_cast<embedded::Id>(project.footage.size() + 1);
        made.kind = kind;
        made.item = item(parent, std::move(name), embedded::ItemKind::footage, made.id);
        made.width = 100;
        made.height = 50;
        made.channels = 4;
        made.bits_per_channel = 8;
        made.has_alpha = true;
        made.interpretation.pixel_aspect = {100, 100};
        made.interpretation_set = true;
        return project.footage.emplace_back(made);
    }

    /// A layer on top of the others of `composition`, at its beginning, 10 frames long. Cameras and lights
    /// turn towards their points of interest, nulls are 3D layers.
    embedded::Layer& layer(embedded::Id composition, embedded::LayerKind kind, std::string name,
                           embedded::Id source = 0) {
        embedded::Layer made;
        made.id = static_cast<embedded::Id>(project.layers.size() + 1);
        made.composition = composition;
        made.kind = kind;
        made.name = std::move(name);
        made.source_item = source;
        made.in_point = {0, 25};
        made.duration = {10, 25};
        made.offset = {0, 25};
        if (kind == embedded::LayerKind::camera || kind == embedded::LayerKind::light) {
            made.flags = kLayerFlag3D | kLayerFlagLookAtPointOfInterest;
        } else if (kind == embedded::LayerKind::null) {
            made.flags = kLayerFlag3D;
        }
        project.compositions.at(embedded::Project::index(composition)).layers.push_front(made.id);
        return project.layers.emplace_back(made);
    }

    /// `frames` keys of a stream, one per frame from `first` on, at 25 frames a second, all with this value.
    static void keys(embedded::Layer& layer, AEGP_LayerStream kind, int first, int frames,
                     const embedded::StreamComponents& value = {}) {
        embedded::Stream& stream = layer.streams[kind];
        stream.kind = kind;
        for (int i = 0; i < frames; ++i) {
            stream.keyframes.push_back({{first + i, 25}, value});
        }
    }

  private:
    embedded::Id item(embedded::Id parent, std::string name, embedded::ItemKind kind, embedded::Id content) {
        const auto id = static_cast<embedded::Id>(project.items.size() + 1);
        project.items.push_back({id, kind, std::move(name), parent, content});
        return id;
    }
};
