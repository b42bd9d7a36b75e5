// What After Effects answers to expressions, for the stand-in: where a point of a layer is in the composition (toComp), and
// the colour of a layer (sampleImage). Written from the documentation of expressions and of the host's layers, and from
// nothing of the programs that judge the answers. Where the host's way is an open question, `rules` says which one it takes:
//
//     stretch       false: a unit of space is a pixel; true: compositions stretch their space as wide as their pixels
//     bank          "clockwise" or "other": where a positive angle about z turns a camera, seen from it
//     add           "mixed": colours are added up to 1, then mixed by what is covered
//                   "summed": premultiplied colours are added, and coverages too; "covered": colours only
//     multiply      "mixed", or "inside": nothing where there is nothing below
//     textureAlpha  "premultiplied", "straight" or "ignored"
//     failing       an expression whose text contains this fails
//
// It runs in node and in duk, as ae_mock.js does.

/* exported makeExpressions */
function makeExpressions(rules) {
    "use strict";

    function fail(text) {
        throw new Error(text);
    }
    function transform(layer, name) {
        return layer.groups["ADBE Transform Group"].list["ADBE " + name].record;
    }

    // ---- Values over time.

    function distance(a, b) {
        return Math.sqrt((a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) + (a[2] - b[2]) * (a[2] - b[2]));
    }
    function along(a, b, part) {
        return typeof a === "number" ? a + (b - a) * part : a.map(function (one, i) {
            return one + (b[i] - one) * part;
        });
    }
    // A point of the cubic with these four, by halving the ways between them.
    function onCurve(four, part) {
        while (four.length > 1) {
            var next = [];
            for (var i = 0; i + 1 < four.length; ++i) {
                next.push(along(four[i], four[i + 1], part));
            }
            four = next;
        }
        return four[0];
    }
    function onSmoothWay(keys, i, part) {
        function handle(at, sign) {
            var before = keys[Math.max(at - 1, 0)].value;
            var after = keys[Math.min(at + 1, keys.length - 1)].value;
            var inner = at > 0 && at + 1 < keys.length;
            return keys[at].value.map(function (one, n) {
                return one + (inner ? sign * (after[n] - before[n]) / 6 : 0);
            });
        }
        var four = [keys[i].value, handle(i, 1), handle(i + 1, -1), keys[i + 1].value];
        var STEPS = 400;
        var lengths = [0];
        for (var k = 1; k <= STEPS; ++k) {
            lengths.push(lengths[k - 1] + distance(onCurve(four, (k - 1) / STEPS), onCurve(four, k / STEPS)));
        }
        var wanted = part * lengths[STEPS];
        var step = 1;
        while (step < STEPS && lengths[step] < wanted) {
            ++step;
        }
        var piece = lengths[step] - lengths[step - 1];
        return onCurve(four, (step - 1 + (piece > 0 ? (wanted - lengths[step - 1]) / piece : 0)) / STEPS);
    }
    function valueAt(record, time, holdType) {
        var keys = record.keys;
        if (keys.length === 0) {
            return record.value;
        }
        if (time <= keys[0].time) {
            return keys[0].value;
        }
        for (var i = 0; i + 1 < keys.length; ++i) {
            if (time < keys[i + 1].time) {
                if (keys[i].out === holdType) {
                    return keys[i].value;
                }
                var part = (time - keys[i].time) / (keys[i + 1].time - keys[i].time);
                var curved = record.definition.spatial && keys[i].auto && record.definition.name !== "ADBE Orientation";
                return curved ? onSmoothWay(keys, i, part) : along(keys[i].value, keys[i + 1].value, part);
            }
        }
        return keys[keys.length - 1].value;
    }

    // ---- Space. Axes are three vectors: where the layer's x, y and z point.

    function turned(axes, axis, degrees) {
        var c = Math.cos(degrees * Math.PI / 180);
        var s = Math.sin(degrees * Math.PI / 180);
        var next = (axis + 1) % 3;
        var last = (axis + 2) % 3;
        var result = [axes[0], axes[1], axes[2]];
        result[next] = axes[next].map(function (one, i) {
            return one * c + axes[last][i] * s;
        });
        result[last] = axes[last].map(function (one, i) {
            return one * c - axes[next][i] * s;
        });
        return result;
    }
    function cross(a, b) {
        return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]];
    }
    function dot(a, b) {
        return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
    }
    function unit(a) {
        var length = Math.sqrt(dot(a, a));
        return [a[0] / length, a[1] / length, a[2] / length];
    }
    function lookingAt(from, to) {
        var z = unit([to[0] - from[0], to[1] - from[1], to[2] - from[2]]);
        // Level: without a part along y, which points down.
        var x = unit(cross([0, 1, 0], z));
        return [x, cross(z, x), z];
    }

    function makeAnswers(host) {
        var hold = host.holdType;

        function activeCamera(comp, time) {
            for (var i = 0; i < comp.layers.length; ++i) {
                var layer = comp.layers[i];
                if (layer.kind === "camera" && layer.raw.enabled && layer.inPoint <= time && time < layer.outPoint) {
                    return layer;
                }
            }
            return fail("the composition has no active camera at " + time);
        }
        function stretchOf(comp) {
            return rules.stretch ? comp.raw.pixelAspect : 1;
        }
        function inWorld(comp, place) {
            return [place[0] * stretchOf(comp), place[1], place[2]];
        }
        function seenBy(camera, comp, place, time) {
            function at(name) {
                return valueAt(transform(camera, name), time, hold);
            }
            var eye = inWorld(comp, at("Position"));
            var axes = [[1, 0, 0], [0, 1, 0], [0, 0, 1]];
            if (camera.raw.autoOrient === host.aimed) {
                axes = lookingAt(eye, inWorld(comp, at("Anchor Point")));
            }
            var bank = rules.bank === "other" ? -1 : 1;
            var orientation = at("Orientation");
            [[0, orientation[0]], [1, orientation[1]], [2, bank * orientation[2]],
                [0, at("Rotate X")], [1, at("Rotate Y")], [2, bank * at("Rotate Z")]].forEach(function (turn) {
                axes = turned(axes, turn[0], turn[1]);
            });
            var way = [place[0] - eye[0], place[1] - eye[1], place[2] - eye[2]];
            var zoom = valueAt(camera.groups["ADBE Camera Options Group"].list["ADBE Camera Zoom"].record, time, hold);
            var depth = dot(way, axes[2]);
            return [comp.raw.width / 2 + zoom * dot(way, axes[0]) / depth / stretchOf(comp),
                comp.raw.height / 2 + zoom * dot(way, axes[1]) / depth, depth - zoom];
        }
        function toComp(layer, point, time) {
            var comp = layer.comp;
            function at(name) {
                return valueAt(transform(layer, name), time, hold);
            }
            var anchor = at("Anchor Point");
            var position = at("Position");
            var scale = at("Scale");
            if (layer.raw.threeDLayer) {
                if (at("Rotate X") !== 0 || at("Rotate Y") !== 0 || at("Rotate Z") !== 0 || distance(at("Orientation"), [0, 0, 0]) > 0) {
                    fail("toComp: turned layers in space are not needed");
                }
                var place = [0, 1, 2].map(function (i) {
                    return position[i] + (point[i] - anchor[i]) * scale[i] / 100;
                });
                return seenBy(activeCamera(comp, time), comp, inWorld(comp, place), time);
            }
            var own = layer.source.raw.pixelAspect / comp.raw.pixelAspect;
            var across = (point[0] - anchor[0]) * scale[0] / 100 * own;
            var down = (point[1] - anchor[1]) * scale[1] / 100;
            var turn = at("Rotate Z") * Math.PI / 180;
            return [position[0] + across * Math.cos(turn) - down * Math.sin(turn),
                position[1] + across * Math.sin(turn) + down * Math.cos(turn), 0];
        }

        // ---- Colours: red, green and blue multiplied by coverage, and coverage.

        function eight(color) {
            return color.map(function (one) {
                return Math.round(Math.min(1, Math.max(0, one)) * 255) / 255;
            });
        }
        function arrived(texel) {
            if (rules.textureAlpha === "ignored") {
                return [texel[0], texel[1], texel[2], 1];
            }
            return rules.textureAlpha === "straight"
                ? [texel[0] * texel[3], texel[1] * texel[3], texel[2] * texel[3], texel[3]] : texel;
        }
        function colorOf(item, place) {
            if (item.kind === "composition") {
                return item.layers.reduceRight(function (below, layer) {
                    return layer.raw.enabled ? over(layer, below, place) : below;
                }, [0, 0, 0, 0]);
            }
            if (item.source.color) {
                return item.source.color.concat([1]);
            }
            return item.source.texel ? arrived(item.source.texel) : fail("the footage has no colour in the stand-in");
        }
        function sourceColor(layer, place) {
            if (layer.source.raw.width !== layer.comp.raw.width || layer.source.raw.height !== layer.comp.raw.height) {
                fail("only layers as large as their composition are drawn");
            }
            var opacity = valueAt(transform(layer, "Opacity"), 0, hold) / 100;
            return eight(colorOf(layer.source, place).map(function (one) {
                return one * opacity;
            }));
        }
        function over(layer, below, place) {
            var above = sourceColor(layer, place);
            var as = above[3];
            var ab = below[3];
            var blend = layer.raw.blendingMode;
            var result = [0, 1, 2].map(function (i) {
                var s = above[i];
                var b = below[i];
                if (blend === host.normal) {
                    return s + (1 - as) * b;
                }
                if (blend === host.add && rules.add !== "mixed") {
                    return s + b;
                }
                var straightS = as > 0 ? s / as : 0;
                var straightB = ab > 0 ? b / ab : 0;
                var both = blend === host.add ? Math.min(1, straightS + straightB) : straightS * straightB;
                var alone = blend === host.multiply && rules.multiply === "inside" ? 0 : (1 - ab) * s;
                return as * ab * both + alone + (1 - as) * b;
            });
            var covered = blend === host.add && rules.add === "summed" ? as + ab
                : blend === host.multiply && rules.multiply === "inside" ? ab : as + ab - as * ab;
            return eight(result.concat([covered]));
        }
        function sampled(layer, point, radius, postEffect, time) {
            if (!(point instanceof Array) || point.length !== 2 || !(radius instanceof Array) || typeof postEffect !== "boolean" ||
                typeof time !== "number") {
                fail("sampleImage(point, radius, postEffect, t)");
            }
            if (point[0] < 0 || point[0] > layer.source.raw.width || point[1] < 0 || point[1] > layer.source.raw.height) {
                return [0, 0, 0, 0];
            }
            var color = sourceColor(layer, point);
            return color[3] > 0 ? [color[0] / color[3], color[1] / color[3], color[2] / color[3], color[3]] : [0, 0, 0, 0];
        }

        return function (expression, layer, time) {
            if (rules.failing && expression.indexOf(rules.failing) >= 0) {
                fail("the expression refers to something that is not there");
            }
            var thisComp = {layer: function (index) {
                if (typeof index !== "number" || index !== Math.floor(index) || index < 1 || index > layer.comp.layers.length) {
                    fail("layer " + index + " is not there");
                }
                var one = layer.comp.layers[index - 1];
                return {
                    toComp: function (point, t) {
                        return toComp(one, point, t === undefined ? time : t);
                    },
                    sampleImage: function (point, radius, postEffect, t) {
                        return sampled(one, point, radius, postEffect, t);
                    }
                };
            }};
            // The value of an expression is that of its last statement.
            return new Function("thisComp", "time", "code", "return eval(code);")(thisComp, time, expression);
        };
    }
    return {answers: makeAnswers};
}

if (typeof module !== "undefined" && module.exports) {
    module.exports = {makeExpressions: makeExpressions};
}
