// A strict stand-in for the scripting interface of After Effects, written from its public documentation. It throws where
// the documentation says that the host does, and where a script would only seem to work: unknown members, wrong types,
// values out of range, hidden properties, display names, stills that are asked for fields.
//
// It runs in node and in duk: no modules, no newer syntax than ECMAScript 5 and Proxy.
//
//     var host = makeHost({files: {"/shots/plate.tif": {width: 720, ...}}, script: "/shots/x.jsx"});
//     host.run(text);         // a script
//     host.state              // what it did: items, alerts, written files, undo groups

/* exported makeHost */
function makeHost(options) {
    "use strict";

    var state = {items: [], alerts: [], confirms: [], written: {}, undo: [], undoDepth: 0, suppressed: 0, changes: 0,
        palettes: 0, nextId: 1, nextLayer: 1, version: options.version || 22};
    var files = options.files || {};

    function fail(text) {
        throw new Error(text);
    }

    // Every object that a script sees goes through this: reading or writing a member that is not there throws.
    function strict(object, name) {
        return new Proxy(object, {
            get: function (target, key) {
                if (key in target || typeof key === "symbol" || key === "toJSON") {
                    return target[key];
                }
                return fail(name + " has no member '" + String(key) + "'");
            },
            set: function (target, key, value) {
                if (!(key in target)) {
                    fail(name + " has no member '" + String(key) + "'");
                }
                var at = target;
                var found;
                while (at && !(found = Object.getOwnPropertyDescriptor(at, key))) {
                    at = Object.getPrototypeOf(at);
                }
                if (!found.set && (found.get || found.writable === false)) {
                    fail(name + "." + String(key) + " is read-only");
                }
                if (found.set) {
                    found.set.call(target, value);
                } else {
                    target[key] = value;
                }
                return true;
            },
            deleteProperty: function () {
                return fail(name + " loses no members");
            }
        });
    }

    function number(value, least, most, what) {
        if (typeof value !== "number" || !(value >= least && value <= most)) {
            fail(what + ": " + String(value) + " is not a number from " + least + " to " + most);
        }
        return value;
    }
    function whole(value, least, most, what) {
        if (number(value, least, most, what) !== Math.floor(value)) {
            fail(what + ": " + value + " is not a whole number");
        }
        return value;
    }
    function string(value, what) {
        if (typeof value !== "string") {
            fail(what + ": " + String(value) + " is not a string");
        }
        return value;
    }
    function flag(value, what) {
        if (typeof value !== "boolean") {
            fail(what + ": " + String(value) + " is not a Boolean");
        }
        return value;
    }
    function numbers(value, count, what) {
        if (!(value instanceof Array) || value.length !== count) {
            fail(what + ": not an array of " + count + " numbers");
        }
        for (var i = 0; i < count; ++i) {
            number(value[i], -1e30, 1e30, what);
        }
        return value.slice();
    }
    function oneOf(value, table, what) {
        for (var key in table) {
            if (table[key] === value) {
                return value;
            }
        }
        return fail(what + ": not one of its constants");
    }
    // Every change of the project; outside an undo group the user could not take it back.
    function touch(what) {
        if (state.undoDepth === 0 && state.watching) {
            fail(what + " outside an undo group");
        }
        ++state.changes;
    }
    function accessor(object, name, get, set) {
        Object.defineProperty(object, name, {get: get, set: set, enumerable: true, configurable: true});
    }
    // A member that is checked and stored.
    function member(object, name, initial, check, owner) {
        var value = initial;
        accessor(object, name, function () {
            return value;
        }, check && function (wanted) {
            touch(owner + "." + name);
            value = check(wanted, owner + "." + name);
        });
    }
    function hidden(object, name, value) {
        Object.defineProperty(object, name, {value: value, writable: true, enumerable: false});
    }

    // ---- Constants: numbers that no other table has, so that mixing them up is seen.

    var nextConstant = 4000;
    function constants(name, names) {
        var table = {};
        for (var i = 0; i < names.length; ++i) {
            table[names[i]] = ++nextConstant;
        }
        return {table: table, seen: strict(table, name)};
    }
    var AlphaMode = constants("AlphaMode", ["IGNORE", "STRAIGHT", "PREMULTIPLIED"]);
    var FieldSeparationType = constants("FieldSeparationType", ["OFF", "UPPER_FIELD_FIRST", "LOWER_FIELD_FIRST"]);
    var BlendingMode = constants("BlendingMode", ["NORMAL", "ADD", "MULTIPLY", "SCREEN"]);
    var LightType = constants("LightType", ["PARALLEL", "SPOT", "POINT", "AMBIENT"]);
    var AutoOrientType =
        constants("AutoOrientType", ["NO_AUTO_ORIENT", "ALONG_PATH", "CAMERA_OR_POINT_OF_INTEREST", "CHARACTERS_TOWARD_CAMERA"]);
    var KeyType = constants("KeyframeInterpolationType", ["LINEAR", "BEZIER", "HOLD"]);
    var ValueType = constants("PropertyValueType",
        ["NO_VALUE", "ThreeD_SPATIAL", "ThreeD", "TwoD_SPATIAL", "TwoD", "OneD", "COLOR", "CUSTOM_VALUE", "MARKER", "TEXT_DOCUMENT"]);
    var ImportAsType = constants("ImportAsType", ["COMP_CROPPED_LAYERS", "FOOTAGE", "COMP", "PROJECT"]);

    // ---- Files. Paths are URIs: "/" between components, "%20" for a space.

    function isAbsolute(path) {
        return path.charAt(0) === "/";
    }
    function normal(path) {
        var parts = path.split("/");
        var kept = [];
        for (var i = 0; i < parts.length; ++i) {
            if (parts[i] === "..") {
                kept.pop();
            } else if (parts[i] !== "." && parts[i] !== "") {
                kept.push(parts[i]);
            }
        }
        // A share of another machine has two slashes.
        return (/^\/\/[^\/]/.test(path) ? "//" : "/") + kept.join("/");
    }
    // Names are bytes, and not all are UTF-8.
    function decoded(uri) {
        try {
            return decodeURIComponent(uri);
        } catch (error) {
            return unescape(uri);
        }
    }
    function FileObject(path) {
        string(path, "File");
        if (/[^\x21-\x7e]/.test(path) || /[\\"<>#?]/.test(path) || /%(?![0-9a-fA-F]{2})/.test(path)) {
            fail("File: '" + path + "' is no URI");
        }
        if (!isAbsolute(path)) {
            fail("File: '" + path + "' counts from a current folder that nobody knows");
        }
        this.uri = normal(path).replace(/%[0-9a-f]{2}/g, function (code) {
            return code.toUpperCase();
        });
    }
    function seenFile(object) {
        var name = object.uri.substring(object.uri.lastIndexOf("/") + 1);
        var api = Object.create(File.prototype);
        var opened = false;
        api.encoding = "";
        accessor(api, "exists", function () {
            return Object.prototype.hasOwnProperty.call(files, object.uri);
        });
        accessor(api, "name", function () {
            return name;
        });
        accessor(api, "absoluteURI", function () {
            return object.uri;
        });
        accessor(api, "fsName", function () {
            return decoded(object.uri);
        });
        accessor(api, "parent", function () {
            return strict({absoluteURI: normal(object.uri + "/.."), fsName: decoded(normal(object.uri + "/.."))},
                "Folder");
        });
        api.open = function (mode) {
            if (mode !== "w") {
                fail("File.open: only writing is needed");
            }
            opened = !options.writingForbidden;
            if (opened) {
                state.written[object.uri] = "";
            }
            return opened;
        };
        api.write = function (text) {
            if (!opened) {
                fail("File.write: not open");
            }
            state.written[object.uri] += string(text, "File.write");
            return true;
        };
        api.close = function () {
            opened = false;
            return true;
        };
        return strict(api, "File");
    }
    function File(path) {
        return seenFile(new FileObject(path));
    }

    // ---- Items.

    function collection(list, name, more) {
        var api = more || {};
        accessor(api, "length", function () {
            return list().length;
        });
        return new Proxy(api, {
            get: function (target, key) {
                if (typeof key !== "symbol" && /^[0-9]+$/.test(String(key))) {
                    var index = Number(key);
                    if (index < 1 || index > list().length) {
                        fail(name + "[" + key + "] is beyond 1.." + list().length);
                    }
                    return list()[index - 1].api;
                }
                if (key in target || typeof key === "symbol") {
                    return target[key];
                }
                return fail(name + " has no member '" + String(key) + "'");
            },
            set: function () {
                return fail(name + " is read-only");
            }
        });
    }

    function Item() {}
    function FolderItem() {}
    function AVItem() {}
    function FootageItem() {}
    function CompItem() {}
    function FootageSource() {}
    function FileSource() {}
    function PlaceholderSource() {}
    function SolidSource() {}
    FolderItem.prototype = Object.create(Item.prototype);
    AVItem.prototype = Object.create(Item.prototype);
    FootageItem.prototype = Object.create(AVItem.prototype);
    CompItem.prototype = Object.create(AVItem.prototype);
    FileSource.prototype = Object.create(FootageSource.prototype);
    PlaceholderSource.prototype = Object.create(FootageSource.prototype);
    SolidSource.prototype = Object.create(FootageSource.prototype);

    var root = {kind: "folder", id: 0, name: "Root", parent: null, api: null};

    function newItem(type, kind, name, parent) {
        var record = {kind: kind, id: state.nextId++, parent: parent || root};
        var raw = Object.create(type.prototype);
        record.raw = raw;
        accessor(raw, "id", function () {
            return record.id;
        });
        member(raw, "name", string(name, "the name of an item"), string, "Item");
        accessor(raw, "typeName", function () {
            return fail("typeName is translated");
        });
        member(raw, "comment", "", string, "Item");
        member(raw, "label", 0, function (value, what) {
            return whole(value, 0, 16, what);
        }, "Item");
        accessor(raw, "parentFolder", function () {
            return record.parent.api;
        }, function (folder) {
            touch("parentFolder");
            var found = recordOf(folder);
            if (!found || found.kind !== "folder") {
                fail("parentFolder: not a folder");
            }
            record.parent = found;
        });
        record.api = strict(raw, type.name || kind);
        state.items.push(record);
        return record;
    }
    function recordOf(api) {
        if (api === root.api) {
            return root;
        }
        for (var i = 0; i < state.items.length; ++i) {
            if (state.items[i].api === api) {
                return state.items[i];
            }
        }
        return null;
    }
    function itemsOf(folder) {
        return collection(function () {
            return state.items.filter(function (one) {
                return one.parent === folder;
            });
        }, "ItemCollection", {
            addFolder: function (name) {
                touch("addFolder");
                return addFolder(name, folder).api;
            },
            addComp: function (name, width, height, aspect, seconds, rate) {
                touch("addComp");
                if (arguments.length !== 6) {
                    fail("addComp takes six arguments");
                }
                return addComp(folder, name, width, height, aspect, seconds, rate).api;
            }
        });
    }
    function addFolder(name, parent) {
        var record = newItem(FolderItem, "folder", name, parent);
        record.raw.items = itemsOf(record);
        accessor(record.raw, "numItems", function () {
            return record.raw.items.length;
        });
        return record;
    }

    // ---- Footage.

    function addFootage(name) {
        var record = newItem(FootageItem, "footage", name, root);
        record.source = null;
        accessor(record.raw, "mainSource", function () {
            return record.source.api;
        });
        accessor(record.raw, "file", function () {
            return record.source.raw.file;
        });
        accessor(record.raw, "footageMissing", function () {
            return record.source.kind === "placeholder";
        });
        ["width", "height"].forEach(function (side) {
            accessor(record.raw, side, function () {
                return record.source[side];
            });
        });
        accessor(record.raw, "duration", function () {
            return record.source.still ? 0 : record.source.count / record.raw.frameRate;
        });
        accessor(record.raw, "frameRate", function () {
            return record.source.still ? 0 : record.source.raw.conformFrameRate || record.source.rate;
        });
        member(record.raw, "pixelAspect", 1, function (value, what) {
            return number(value, 0.01, 100, what);
        }, "FootageItem");
        record.raw.replace = function (file) {
            touch("replace");
            useFile(record, readable(file), false, null);
        };
        record.raw.replaceWithSequence = function (file, alphabetical) {
            touch("replaceWithSequence");
            flag(alphabetical, "forceAlphabetical");
            useFile(record, readable(file), true, null);
        };
        record.raw.replaceWithPlaceholder = function (name, width, height, rate, seconds) {
            touch("replaceWithPlaceholder");
            usePlaceholder(record, name, width, height, rate, seconds);
            record.raw.name = name;
        };
        return record;
    }
    function readable(file) {
        if (!(file instanceof File)) {
            fail("not a File");
        }
        var content = files[file.absoluteURI];
        if (!content) {
            fail("After Effects error: the file '" + file.fsName + "' does not exist.");
        }
        if (content.unreadable) {
            fail("After Effects error: the file '" + file.fsName + "' is damaged or of a type that is not supported.");
        }
        return file;
    }
    function newSource(type, kind, still) {
        var source = {kind: kind, still: still, raw: Object.create(type.prototype)};
        source.raw.file = null;
        Object.defineProperty(source.raw, "file", {writable: false, configurable: true});
        accessor(source.raw, "isStill", function () {
            return still;
        });
        accessor(source.raw, "hasAlpha", function () {
            return source.alpha;
        });
        var mode = AlphaMode.table.STRAIGHT;
        accessor(source.raw, "alphaMode", function () {
            return mode;
        }, function (value) {
            touch("alphaMode");
            if (!source.alpha) {
                fail("alphaMode: the footage has no alpha channel");
            }
            mode = oneOf(value, AlphaMode.table, "alphaMode");
        });
        member(source.raw, "premulColor", [0, 0, 0], function (value, what) {
            numbers(value, 3, what).forEach(function (one) {
                number(one, 0, 1, what);
            });
            if (mode !== AlphaMode.table.PREMULTIPLIED) {
                fail("premulColor: alphaMode is not PREMULTIPLIED");
            }
            return value.slice();
        }, "FootageSource");
        function notStill(what) {
            if (still) {
                fail(what + ": the footage is a still image");
            }
        }
        member(source.raw, "fieldSeparationType", FieldSeparationType.table.OFF, function (value, what) {
            notStill(what);
            return oneOf(value, FieldSeparationType.table, what);
        }, "FootageSource");
        member(source.raw, "conformFrameRate", 0, function (value, what) {
            notStill(what);
            return number(value, 0, 99, what);
        }, "FootageSource");
        member(source.raw, "loop", 1, function (value, what) {
            notStill(what);
            return whole(value, 1, 9999, what);
        }, "FootageSource");
        source.api = strict(source.raw, "FootageSource");
        return source;
    }
    // "shot0017.png" with its neighbours: the numbers that are there.
    function numberedFiles(uri) {
        var match = /^(.*?)([0-9]+)(\.[^.\/]*)$/.exec(uri);
        if (!match) {
            return null;
        }
        var found = [];
        for (var other in files) {
            if (Object.prototype.hasOwnProperty.call(files, other)) {
                var same = /^(.*?)([0-9]+)(\.[^.\/]*)$/.exec(other);
                if (same && same[1] === match[1] && same[3].toLowerCase() === match[3].toLowerCase()) {
                    found.push({number: Number(same[2]), digits: same[2]});
                }
            }
        }
        found.sort(function (a, b) {
            return a.number - b.number;
        });
        return {prefix: match[1], suffix: match[3], found: found};
    }
    function useFile(record, file, sequence, range) {
        var content = files[file.absoluteURI];
        var numbered = sequence ? numberedFiles(file.absoluteURI) : null;
        var source = newSource(FileSource, numbered ? "sequence" : "file", !numbered);
        Object.defineProperty(source.raw, "file", {value: file});
        source.uri = file.absoluteURI;
        source.width = content.width;
        source.height = content.height;
        source.alpha = Boolean(content.alpha);
        source.texel = content.texel;
        source.rate = 30;
        var name = decoded(file.name);
        if (numbered) {
            var first = numbered.found[0];
            var last = numbered.found[numbered.found.length - 1];
            source.first = range ? range[0] : first.number;
            source.last = range ? range[1] : last.number;
            source.count = source.last - source.first + 1;
            var padded = function (value) {
                var text = String(value);
                while (text.length < first.digits.length) {
                    text = "0" + text;
                }
                return text;
            };
            name = decoded(numbered.prefix.substring(numbered.prefix.lastIndexOf("/") + 1)) + "[" +
                padded(source.first) + "-" + padded(source.last) + "]" + decoded(numbered.suffix);
        }
        record.source = source;
        return name;
    }
    function usePlaceholder(record, name, width, height, rate, seconds) {
        string(name, "the name of a placeholder");
        if (options.shortPlaceholders && name.length > 31) {
            fail("importPlaceholder: a name of more than 31 characters");
        }
        var source = newSource(PlaceholderSource, "placeholder", false);
        source.width = whole(width, 4, 30000, "the width of a placeholder");
        source.height = whole(height, 4, 30000, "the height of a placeholder");
        source.rate = number(rate, 1, 99, "the rate of a placeholder");
        source.seconds = number(seconds, 0, 10800, "the length of a placeholder");
        source.count = Math.round(seconds * rate);
        source.alpha = true;
        record.source = source;
    }

    function ImportOptions(file) {
        if (!(this instanceof ImportOptions) && !this) {
            fail("ImportOptions is made with new");
        }
        var raw = Object.create(ImportOptions.prototype);
        raw.file = file;
        raw.sequence = false;
        raw.forceAlphabetical = false;
        if (!options.noRanges) {
            hidden(raw, "range", null);
            raw.rangeStart = 0;
            raw.rangeEnd = 0;
        }
        return strict(raw, "ImportOptions");
    }

    // ---- Compositions.

    function addComp(folder, name, width, height, aspect, seconds, rate) {
        var record = newItem(CompItem, "composition", name, folder);
        var raw = record.raw;
        record.layers = [];
        function sized(field, value, least, most, check) {
            member(raw, field, check(value, least, most, field), function (wanted, what) {
                return check(wanted, least, most, what);
            }, "CompItem");
        }
        sized("width", width, 4, 30000, whole);
        sized("height", height, 4, 30000, whole);
        sized("pixelAspect", aspect, 0.01, 100, number);
        sized("duration", seconds, 0, 10800, number);
        sized("frameRate", rate, 1, 99, number);
        accessor(raw, "frameDuration", function () {
            return 1 / raw.frameRate;
        });
        accessor(raw, "numLayers", function () {
            return record.layers.length;
        });
        raw.layer = function (index) {
            whole(index, 1, record.layers.length, "layer(index)");
            return record.layers[index - 1].api;
        };
        // Versions before 14 have no markers on compositions; members that are absent are undefined there.
        raw.markerProperty = state.version >= 14 ? newProperty({name: "ADBE Marker", size: 0, type: "MARKER"}, null).api : undefined;
        raw.layers = collection(function () {
            return record.layers;
        }, "LayerCollection", {
            add: function (item) {
                touch("layers.add");
                var found = recordOf(item);
                if (!found || found.kind === "folder") {
                    fail("layers.add: neither footage nor a composition");
                }
                if (found === record || uses(found, record)) {
                    fail("layers.add: a composition within itself");
                }
                return addLayer(record, found.kind === "composition" ? "composition" : "footage", found).api;
            },
            addNull: function () {
                touch("addNull");
                var solid = addFootage("Null " + state.nextId);
                solid.solid = true;
                solid.source = newSource(SolidSource, "solid", true);
                var layer = addLayer(record, "null", solid);
                layer.raw.name = "Null " + layer.id;
                return layer.api;
            },
            addCamera: function (name, center) {
                touch("addCamera");
                var layer = addLayer(record, "camera", null);
                layer.center = numbers(center, 2, "addCamera");
                layer.raw.name = string(name, "addCamera");
                return layer.api;
            },
            addText: function (text) {
                touch("addText");
                var layer = addLayer(record, "text", null);
                layer.raw.name = string(text, "addText");
                layer.groups["ADBE Text Properties"].list["ADBE Text Document"].record.value = strict({text: text}, "TextDocument");
                return layer.api;
            },
            addSolid: function (color, name, width, height, aspect, seconds) {
                touch("addSolid");
                var solid = addFootage(string(name, "addSolid"));
                solid.solid = true;
                solid.source = newSource(SolidSource, "solid", true);
                solid.source.color = numbers(color, 3, "addSolid");
                solid.source.color.forEach(function (one) {
                    number(one, 0, 1, "addSolid");
                });
                solid.source.width = whole(width, 4, 30000, "addSolid");
                solid.source.height = whole(height, 4, 30000, "addSolid");
                solid.raw.pixelAspect = aspect;
                var layer = addLayer(record, "footage", solid);
                layer.outPoint = layer.inPoint + number(seconds, 0, 10800, "addSolid");
                return layer.api;
            },
            addLight: function (name, center) {
                touch("addLight");
                var layer = addLayer(record, "light", null);
                layer.center = numbers(center, 2, "addLight");
                layer.raw.name = string(name, "addLight");
                return layer.api;
            }
        });
        return record;
    }
    function uses(outer, inner) {
        return outer.kind === "composition" && outer.layers.some(function (layer) {
            return layer.source && (layer.source === inner || uses(layer.source, inner));
        });
    }

    // ---- Layers.

    function addLayer(comp, kind, source) {
        var layer = {kind: kind, comp: comp, source: source, id: state.nextLayer++, light: LightType.table.SPOT, parent: null,
            // A preference lets new layers start at the current time.
            start: options.startAtTime || 0};
        var raw = {};
        layer.raw = raw;
        layer.inPoint = layer.start;
        layer.outPoint = layer.start + comp.raw.duration;
        var name = null;
        accessor(raw, "name", function () {
            return name === null ? source.raw.name : name;
        }, function (value) {
            touch("Layer.name");
            name = string(value, "Layer.name");
        });
        member(raw, "comment", "", string, "Layer");
        member(raw, "label", 0, function (value, what) {
            return whole(value, 0, 16, what);
        }, "Layer");
        accessor(raw, "index", function () {
            return layer.comp.layers.indexOf(layer) + 1;
        });
        member(raw, "enabled", true, flag, "Layer");
        raw.duplicate = function () {
            touch("duplicate");
            var copy = addLayer(comp, kind, source);
            comp.layers.splice(comp.layers.indexOf(copy), 1);
            comp.layers.splice(comp.layers.indexOf(layer), 0, copy);
            ["start", "inPoint", "outPoint"].forEach(function (time) {
                copy[time] = layer[time];
            });
            ["name", "comment", "label", "enabled"].concat(kind === "camera" || kind === "light" ? ["autoOrient"]
                : ["threeDLayer", "blendingMode"]).forEach(function (setting) {
                copy.raw[setting] = raw[setting];
            });
            Object.keys(layer.groups).forEach(function (group) {
                Object.keys(layer.groups[group].list).forEach(function (match) {
                    var from = layer.groups[group].list[match].record;
                    var to = copy.groups[group].list[match].record;
                    to.value = from.value;
                    to.expression = from.expression;
                    to.keys = from.keys.map(function (key) {
                        return Object.assign({}, key);
                    });
                });
            });
            return copy.api;
        };
        accessor(raw, "containingComp", function () {
            return layer.comp.api;
        });
        accessor(raw, "startTime", function () {
            return layer.start;
        }, function (value) {
            touch("startTime");
            number(value, -10800, 10800, "startTime");
            layer.inPoint += value - layer.start;
            layer.outPoint += value - layer.start;
            layer.start = value;
        });
        accessor(raw, "inPoint", function () {
            return layer.inPoint;
        }, function (value) {
            touch("inPoint");
            layer.inPoint = number(value, -10800, 10800, "inPoint");
            layer.timed = true;
        });
        accessor(raw, "outPoint", function () {
            return layer.outPoint;
        }, function (value) {
            touch("outPoint");
            layer.outPoint = number(value, -10800, 10800, "outPoint");
            if (layer.outPoint <= layer.inPoint) {
                fail("outPoint: not after the in-point");
            }
        });
        raw.moveBefore = function (other) {
            touch("moveBefore");
            move(layerOf(other));
        };
        raw.moveToEnd = function () {
            touch("moveToEnd");
            move(null);
        };
        function move(other) {
            comp.layers.splice(comp.layers.indexOf(layer), 1);
            if (other && other.comp !== comp) {
                fail("moveBefore: a layer of another composition");
            }
            comp.layers.splice(other ? comp.layers.indexOf(other) : comp.layers.length, 0, layer);
        }
        function layerOf(api) {
            var found = comp.layers.filter(function (one) {
                return one.api === api;
            })[0];
            return found || fail("not a layer of this composition");
        }
        // As for a person: the layer stays where it is, so its values change. Parents here do not turn or scale.
        accessor(raw, "parent", function () {
            return layer.parent ? layer.parent.api : null;
        }, function (value) {
            touch("parent");
            var next = value === null ? null : layerOf(value);
            shiftBy(layer, layer.parent, 1);
            shiftBy(layer, next, -1);
            layer.parent = next;
        });
        if (kind === "camera" || kind === "light") {
            member(raw, "autoOrient", kind === "camera" && options.newCameras === "one-node" ? AutoOrientType.table.NO_AUTO_ORIENT
                : AutoOrientType.table.CAMERA_OR_POINT_OF_INTEREST, function (value, what) {
                if (kind === "light" && layer.light === LightType.table.POINT) {
                    fail("autoOrient: a point light has no direction");
                }
                return oneOf(value, AutoOrientType.table, what);
            }, "Layer");
        } else {
            member(raw, "threeDLayer", false, flag, "AVLayer");
            member(raw, "blendingMode", BlendingMode.table.NORMAL, function (value, what) {
                return oneOf(value, BlendingMode.table, what);
            }, "AVLayer");
        }
        if (kind === "light") {
            accessor(raw, "lightType", function () {
                return layer.light;
            }, function (value) {
                touch("lightType");
                layer.light = oneOf(value, LightType.table, "lightType");
            });
        }
        layer.groups = propertyGroups(layer);
        raw.property = function (name) {
            return byMatchName(layer.groups, name, "a layer");
        };
        layer.api = strict(raw, "Layer");
        comp.layers.unshift(layer);
        return layer;
    }
    function shiftBy(layer, parent, sign) {
        if (!parent) {
            return;
        }
        var from = parent.groups["ADBE Transform Group"].list["ADBE Position"].record.value;
        ["ADBE Position", "ADBE Anchor Point"].forEach(function (name) {
            if (name === "ADBE Anchor Point" && layer.kind !== "camera" && layer.kind !== "light") {
                return;
            }
            var property = layer.groups["ADBE Transform Group"].list[name].record;
            property.value = moved(property.value);
            property.keys.forEach(function (key) {
                key.value = moved(key.value);
            });
        });
        function moved(value) {
            return value.map(function (one, i) {
                return one + sign * (from[i] || 0);
            });
        }
    }
    function byMatchName(list, name, what) {
        string(name, "property()");
        if (!/^ADBE /.test(name)) {
            fail("property('" + name + "'): display names are translated");
        }
        if (!Object.prototype.hasOwnProperty.call(list, name)) {
            return null;
        }
        return list[name].shown && !list[name].shown() ? null : list[name].api || fail(what);
    }

    function propertyGroups(layer) {
        var groups = {};
        function group(name, properties) {
            var list = {};
            properties.forEach(function (definition) {
                list[definition.name] = newProperty(definition, layer);
            });
            groups[name] = {list: list, api: strict({
                property: function (match) {
                    return byMatchName(list, match, name);
                }
            }, "PropertyGroup")};
        }
        var light = layer.kind === "light";
        function directed() {
            return !light || layer.light === LightType.table.SPOT || layer.light === LightType.table.PARALLEL;
        }
        function aimed() {
            return directed() && layer.raw.autoOrient === AutoOrientType.table.CAMERA_OR_POINT_OF_INTEREST;
        }
        var placed = layer.kind === "camera" || light;
        var middle = [layer.comp.raw.width / 2, layer.comp.raw.height / 2, 0];
        // Nulls are 100 pixels large, and have their anchor in the middle or at 0, by version.
        var anchor = layer.source && layer.kind !== "null" ? [layer.source.raw.width / 2, layer.source.raw.height / 2, 0] : [50, 50, 0];
        group("ADBE Transform Group", placed ? [
            {name: "ADBE Anchor Point", size: 3, type: "ThreeD_SPATIAL", spatial: true, value: middle, writable: aimed},
            {name: "ADBE Position", size: 3, type: "ThreeD_SPATIAL", spatial: true, value: middle},
            {name: "ADBE Orientation", size: 3, type: "ThreeD_SPATIAL", spatial: true, value: [0, 0, 0], writable: directed},
            {name: "ADBE Rotate X", size: 1, type: "OneD", value: 0, writable: directed},
            {name: "ADBE Rotate Y", size: 1, type: "OneD", value: 0, writable: directed},
            {name: "ADBE Rotate Z", size: 1, type: "OneD", value: 0, writable: directed}
        ] : [
            {name: "ADBE Anchor Point", size: 3, type: "ThreeD_SPATIAL", spatial: true, value: anchor},
            {name: "ADBE Position", size: 3, type: "ThreeD_SPATIAL", spatial: true, value: middle},
            {name: "ADBE Scale", size: 3, type: "ThreeD", value: [100, 100, 100]},
            {name: "ADBE Orientation", size: 3, type: "ThreeD_SPATIAL", spatial: true, value: [0, 0, 0], writable: inSpace},
            {name: "ADBE Rotate X", size: 1, type: "OneD", value: 0, writable: inSpace},
            {name: "ADBE Rotate Y", size: 1, type: "OneD", value: 0, writable: inSpace},
            {name: "ADBE Rotate Z", size: 1, type: "OneD", value: 0},
            {name: "ADBE Opacity", size: 1, type: "OneD", value: 100, min: 0, max: 100}
        ]);
        if (layer.kind === "text") {
            group("ADBE Text Properties", [{name: "ADBE Text Document", size: 0, type: "TEXT_DOCUMENT", value: null}]);
        }
        function inSpace() {
            return layer.raw.threeDLayer;
        }
        if (layer.kind === "camera") {
            group("ADBE Camera Options Group", [
                {name: "ADBE Camera Zoom", size: 1, type: "OneD", value: 1000, min: 1, max: 1e9}
            ]);
        }
        if (light) {
            var cone = function () {
                return layer.light === LightType.table.SPOT;
            };
            group("ADBE Light Options Group", [
                {name: "ADBE Light Intensity", size: 1, type: "OneD", value: 100, min: -10000, max: 10000},
                {name: "ADBE Light Color", size: 4, type: "COLOR", value: [1, 1, 1, 1]},
                {name: "ADBE Light Cone Angle", size: 1, type: "OneD", value: 90, min: 0, max: 180, writable: cone},
                {name: "ADBE Light Cone Feather 2", size: 1, type: "OneD", value: 50, min: 0, max: 100, writable: cone},
                {name: "ADBE Casts Shadows", size: 1, type: "OneD", value: 0, min: 0, max: 1}
            ]);
        }
        return groups;
    }

    // ---- Properties.

    var answers = options.expressions && options.expressions.answers({holdType: KeyType.table.HOLD,
        aimed: AutoOrientType.table.CAMERA_OR_POINT_OF_INTEREST, normal: BlendingMode.table.NORMAL, add: BlendingMode.table.ADD,
        multiply: BlendingMode.table.MULTIPLY});

    function newProperty(definition, layer) {
        var record = {definition: definition, value: definition.value, keys: [], set: false};
        var api = {};
        function writable(what) {
            touch(what);
            if (definition.writable && !definition.writable()) {
                fail("After Effects error: can not '" + what + "' with this property, because the property or a parent " +
                    "property is hidden.");
            }
        }
        function checked(value, what) {
            if (definition.type === "MARKER") {
                return value instanceof MarkerValue ? value : fail(what + ": not a MarkerValue");
            }
            if (definition.size === 1) {
                return number(value, definition.min === undefined ? -1e30 : definition.min,
                    definition.max === undefined ? 1e30 : definition.max, definition.name + "." + what);
            }
            return numbers(value, definition.size, definition.name + "." + what);
        }
        function key(index) {
            whole(index, 1, record.keys.length, definition.name + ": a key");
            return record.keys[index - 1];
        }
        function spatial(what) {
            if (!definition.spatial) {
                fail(what + ": " + definition.name + " is not spatial");
            }
        }
        // Keys closer than this are one.
        var SAME = 1e-6;
        function setAt(time, value) {
            number(time, -10800, 10800, "the time of a key");
            var kept = checked(value, "a key");
            for (var i = record.keys.length; i > 0; --i) {
                if (Math.abs(record.keys[i - 1].time - time) < SAME) {
                    record.keys[i - 1].value = kept;
                    return;
                }
                if (record.keys[i - 1].time < time) {
                    break;
                }
            }
            record.keys.splice(i, 0, {time: time, value: kept, into: definition.spatial ? KeyType.table.LINEAR : KeyType.table.LINEAR,
                out: KeyType.table.LINEAR, auto: true, continuous: true, tangents: null});
        }
        accessor(api, "numKeys", function () {
            return record.keys.length;
        });
        accessor(api, "value", function () {
            return record.value;
        });
        accessor(api, "propertyValueType", function () {
            return ValueType.table[definition.type];
        });
        accessor(api, "isSpatial", function () {
            return Boolean(definition.spatial);
        });
        accessor(api, "hasMin", function () {
            return definition.min !== undefined;
        });
        accessor(api, "hasMax", function () {
            return definition.max !== undefined;
        });
        accessor(api, "minValue", function () {
            return definition.min === undefined ? fail("minValue: the property has no minimum") : definition.min;
        });
        accessor(api, "maxValue", function () {
            return definition.max === undefined ? fail("maxValue: the property has no maximum") : definition.max;
        });
        api.setValue = function (value) {
            writable("setValue");
            if (record.keys.length > 0) {
                fail("setValue: the property has keys");
            }
            record.value = checked(value, "setValue");
            record.set = true;
        };
        api.setValueAtTime = function (time, value) {
            writable("setValueAtTime");
            setAt(time, value);
        };
        api.setValuesAtTimes = function (times, values) {
            writable("setValuesAtTimes");
            if (!(times instanceof Array) || !(values instanceof Array) || times.length !== values.length) {
                fail("setValuesAtTimes: the arrays have different lengths");
            }
            for (var i = 0; i < times.length; ++i) {
                setAt(times[i], values[i]);
            }
        };
        // An expression that fails is switched off, and the property says why.
        record.expression = "";
        record.expressionError = "";
        accessor(api, "expression", function () {
            return record.expression;
        }, function (text) {
            writable("expression");
            record.expression = string(text, "expression");
            record.expressionError = "";
        });
        accessor(api, "expressionError", function () {
            return record.expressionError;
        });
        api.valueAtTime = function (time, preExpression) {
            number(time, -10800, 10800, "valueAtTime");
            if (definition.type !== "TEXT_DOCUMENT") {
                fail("valueAtTime: only the text of expressions is needed");
            }
            if (flag(preExpression, "valueAtTime") || record.expression === "" || !options.expressions) {
                return record.value;
            }
            try {
                return strict({text: String(answers(record.expression, layer, time))}, "TextDocument");
            } catch (error) {
                record.expressionError = "Expression disabled: " + error.message;
                return record.value;
            }
        };
        api.removeKey = function (index) {
            writable("removeKey");
            key(index);
            record.keys.splice(index - 1, 1);
        };
        api.keyTime = function (index) {
            return key(index).time;
        };
        api.keyValue = function (index) {
            return key(index).value;
        };
        api.keyInInterpolationType = function (index) {
            return key(index).into;
        };
        api.setInterpolationTypeAtKey = function (index, into, out) {
            writable("setInterpolationTypeAtKey");
            key(index).into = oneOf(into, KeyType.table, "setInterpolationTypeAtKey");
            key(index).out = oneOf(out, KeyType.table, "setInterpolationTypeAtKey");
        };
        api.setSpatialAutoBezierAtKey = function (index, on) {
            spatial("setSpatialAutoBezierAtKey");
            key(index).auto = flag(on, "setSpatialAutoBezierAtKey");
        };
        api.setSpatialContinuousAtKey = function (index, on) {
            spatial("setSpatialContinuousAtKey");
            key(index).continuous = flag(on, "setSpatialContinuousAtKey");
        };
        api.setSpatialTangentsAtKey = function (index, into, out) {
            spatial("setSpatialTangentsAtKey");
            key(index).tangents = [numbers(into, definition.size, "a tangent"), numbers(out, definition.size, "a tangent")];
        };
        return {record: record, layer: layer, api: strict(api, "Property")};
    }
    function MarkerValue(comment) {
        var raw = Object.create(MarkerValue.prototype);
        raw.comment = string(comment, "MarkerValue");
        return strict(raw, "MarkerValue");
    }

    // ---- The application.

    root.items = itemsOf(root);
    root.api = strict({items: root.items}, "FolderItem");
    var project = strict({
        rootFolder: root.api,
        bitsPerChannel: 8,
        linearBlending: Boolean(options.linearBlending),
        items: collection(function () {
            return state.items;
        }, "ItemCollection", {}),
        importFile: function (wanted) {
            touch("importFile");
            if (!(wanted instanceof ImportOptions)) {
                fail("importFile: not ImportOptions");
            }
            var file = readable(wanted.file);
            var record = addFootage("");
            var range = !options.noRanges && (wanted.rangeStart || wanted.rangeEnd) ? [wanted.rangeStart, wanted.rangeEnd] : null;
            flag(wanted.sequence, "sequence");
            record.raw.name = useFile(record, file, wanted.sequence, range);
            return record.api;
        },
        importPlaceholder: function (name, width, height, rate, seconds) {
            touch("importPlaceholder");
            var record = addFootage(string(name, "importPlaceholder"));
            try {
                usePlaceholder(record, name, width, height, rate, seconds);
            } catch (error) {
                state.items.pop();
                throw error;
            }
            return record.api;
        }
    }, "Project");

    var app = strict({
        project: project,
        isRenderEngine: Boolean(options.renderEngine),
        version: String(state.version),
        newProject: function () {
            return project;
        },
        beginUndoGroup: function (name) {
            string(name, "beginUndoGroup");
            ++state.undoDepth;
            state.undo.push(name);
        },
        endUndoGroup: function () {
            if (state.undoDepth-- === 0) {
                fail("endUndoGroup: no group is open");
            }
        },
        beginSuppressDialogs: function () {
            ++state.suppressed;
        },
        endSuppressDialogs: function (alertThem) {
            flag(alertThem, "endSuppressDialogs");
            --state.suppressed;
        }
    }, "Application");

    function Window(type, title) {
        string(title, "Window");
        if (type !== "palette") {
            fail("Window: only a palette lets the script go on");
        }
        ++state.palettes;
        return strict({
            add: function (kind, bounds, value, most) {
                return strict({value: value, kind: kind, maxvalue: most}, "ScriptUI");
            },
            show: function () {
                return undefined;
            },
            update: function () {
                return undefined;
            },
            close: function () {
                --state.palettes;
            }
        }, "Window");
    }

    var globals = {
        app: app, File: File, ImportOptions: ImportOptions, MarkerValue: MarkerValue, Window: Window, CompItem: CompItem,
        FolderItem: FolderItem, FootageItem: FootageItem, FileSource: FileSource, PlaceholderSource: PlaceholderSource,
        AlphaMode: AlphaMode.seen, FieldSeparationType: FieldSeparationType.seen, BlendingMode: BlendingMode.seen,
        LightType: LightType.seen, AutoOrientType: AutoOrientType.seen, KeyframeInterpolationType: KeyType.seen,
        PropertyValueType: ValueType.seen, ImportAsType: ImportAsType.seen,
        alert: function (text) {
            if (options.renderEngine) {
                fail("alert: there is no window");
            }
            state.alerts.push(string(text, "alert"));
        },
        confirm: function (text) {
            if (options.renderEngine) {
                fail("confirm: there is no window");
            }
            state.confirms.push(string(text, "confirm"));
            return options.answer !== false;
        },
        "$": strict({global: {LightType: LightType.seen}, fileName: options.script || "/scripts/scene.jsx", writeln: function (text) {
            state.alerts.push(string(text, "writeln"));
        }}, "$"),
        // Not there in the host: what a script would use by mistake.
        JSON: undefined, console: undefined, require: undefined, module: undefined, process: undefined, Map: undefined,
        Set: undefined, Promise: undefined, Symbol: undefined, print: undefined
    };

    function run(text) {
        var names = Object.keys(globals);
        var values = names.map(function (name) {
            return globals[name];
        });
        state.watching = true;
        try {
            Function.apply(null, names.concat([text])).apply(undefined, values);
        } finally {
            state.watching = false;
        }
        if (state.undoDepth !== 0 || state.suppressed !== 0 || state.palettes !== 0) {
            fail("the script left an undo group, suppressed dialogs or a palette behind");
        }
    }

    return {state: state, run: run, globals: globals, files: files, addComp: addComp, root: root,
        constants: {AlphaMode: AlphaMode.table, FieldSeparationType: FieldSeparationType.table, LightType: LightType.table,
            BlendingMode: BlendingMode.table, AutoOrientType: AutoOrientType.table, KeyType: KeyType.table}};
}

if (typeof module !== "undefined" && module.exports) {
    module.exports = {makeHost: makeHost};
}
