// Each trap of the stand-in for After Effects throws, with its own reason, and the way beside it does not.
"use strict";

const { makeHost } = require("./ae_mock.js");

const START = `
    app.beginUndoGroup("test");
    var comp = app.project.rootFolder.items.addComp("c", 720, 576, 1, 4, 25);
    var still = new ImportOptions(new File("/d/still.tif")); still = app.project.importFile(still);
    var wanted = new ImportOptions(new File("/d/a.0001.tif")); wanted.sequence = true; var sequence = app.project.importFile(wanted);
    var camera = comp.layers.addCamera("camera", [360, 288]);
    var light = comp.layers.addLight("light", [360, 288]);
    function text(comp) { return comp.layers.addText("t").property("ADBE Text Properties").property("ADBE Text Document"); }
    function at(layer, group, name) { return layer.property("ADBE " + group + " Group").property("ADBE " + name); }
`;
const END = "app.endUndoGroup();";

// name, what works, what throws, what the reason contains
const CASES = [
    ["a member that does not exist is not read", "comp.numLayers;", "comp.layerCount;", /no member 'layerCount'/],
    ["a member that does not exist is not written", "comp.name = 'x';", "comp.title = 'x';", /no member 'title'/],
    ["a read-only member is not written", "comp.numLayers;", "comp.numLayers = 1;", /read-only/],
    ["compositions have 4 pixels", "app.project.rootFolder.items.addComp('a', 4, 4, 1, 1, 25);",
        "app.project.rootFolder.items.addComp('a', 3, 4, 1, 1, 25);", /not a number from 4/],
    ["compositions have 30000 pixels", "app.project.rootFolder.items.addComp('a', 30000, 4, 1, 1, 25);",
        "app.project.rootFolder.items.addComp('a', 30001, 4, 1, 1, 25);", /to 30000/],
    ["compositions last three hours", "app.project.rootFolder.items.addComp('a', 4, 4, 1, 10800, 25);",
        "app.project.rootFolder.items.addComp('a', 4, 4, 1, 10801, 25);", /to 10800/],
    ["rates end at 99", "app.project.rootFolder.items.addComp('a', 4, 4, 1, 1, 99);",
        "app.project.rootFolder.items.addComp('a', 4, 4, 1, 1, 99.1);", /to 99/],
    ["pixel aspects begin at a hundredth", "app.project.rootFolder.items.addComp('a', 4, 4, 0.01, 1, 25);",
        "app.project.rootFolder.items.addComp('a', 4, 4, 0.009, 1, 25);", /from 0.01/],
    ["NaN is no size", "comp.width = 4;", "comp.width = NaN;", /NaN/],
    ["a name is a string", "comp.name = '1';", "comp.name = 1;", /not a string/],
    ["labels end at 16", "comp.label = 16;", "comp.label = 17;", /to 16/],
    ["a missing file is not imported", "new File('/d/none.tif').exists;",
        "app.project.importFile(new ImportOptions(new File('/d/none.tif')));", /does not exist/],
    ["an unreadable file is not imported", "new File('/d/bad.txl').exists;",
        "app.project.importFile(new ImportOptions(new File('/d/bad.txl')));", /damaged/],
    ["a path is a URI", "new File('/d/a%20b.tif');", "new File('/d/a b.tif');", /no URI/],
    ["a percent sign is encoded", "new File('/d/50%25.tif');", "new File('/d/50%.tif');", /no URI/],
    ["a hash is encoded", "new File('/d/a%23.tif');", "new File('/d/a#.tif');", /no URI/],
    ["a relative path counts from nowhere", "new File('/d/a.tif');", "new File('a.tif');", /current folder/],
    ["stills have no fields", "sequence.mainSource.fieldSeparationType = FieldSeparationType.OFF;",
        "still.mainSource.fieldSeparationType = FieldSeparationType.OFF;", /still image/],
    ["stills have no rate", "sequence.mainSource.conformFrameRate = 25;", "still.mainSource.conformFrameRate = 25;", /still image/],
    ["stills do not loop", "sequence.mainSource.loop = 2;", "still.mainSource.loop = 2;", /still image/],
    ["footage without alpha has no alpha mode", "still.mainSource.alphaMode = AlphaMode.IGNORE;",
        "sequence.mainSource.alphaMode = AlphaMode.IGNORE;", /no alpha channel/],
    ["a mode is not another table's", "still.mainSource.alphaMode = AlphaMode.STRAIGHT;",
        "still.mainSource.alphaMode = BlendingMode.NORMAL;", /not one of its constants/],
    ["a constant that does not exist", "AlphaMode.STRAIGHT;", "AlphaMode.PREMUL;", /no member 'PREMUL'/],
    ["display names are translated", "at(camera, 'Transform', 'Position').value;",
        "camera.property('Transform');", /display names are translated/],
    ["an unknown match name gives nothing", "at(camera, 'Transform', 'Position').numKeys;",
        "at(camera, 'Transform', 'Scale').numKeys;", /null/],
    ["times and values go in pairs", "at(camera, 'Transform', 'Position').setValuesAtTimes([0], [[1, 2, 3]]);",
        "at(camera, 'Transform', 'Position').setValuesAtTimes([0, 1], [[1, 2, 3]]);", /different lengths/],
    ["a position has three numbers", "at(camera, 'Transform', 'Position').setValue([1, 2, 3]);",
        "at(camera, 'Transform', 'Position').setValue([1, 2]);", /array of 3/],
    ["infinity is no number", "at(camera, 'Transform', 'Position').setValue([1, 2, 3]);",
        "at(camera, 'Transform', 'Position').setValue([1, 2, 1 / 0]);", /not a number/],
    ["a property with keys takes no value", "at(camera, 'Transform', 'Position').setValue([1, 2, 3]);",
        "var p = at(camera, 'Transform', 'Position'); p.setValueAtTime(0, [1, 2, 3]); p.setValue([1, 2, 3]);", /has keys/],
    ["the zoom begins at 1", "at(camera, 'Camera Options', 'Camera Zoom').setValue(1);",
        "at(camera, 'Camera Options', 'Camera Zoom').setValue(0.5);", /from 1/],
    ["point lights have no orientation", "light.lightType = LightType.SPOT; at(light, 'Transform', 'Orientation').setValue([0, 0, 0]);",
        "light.lightType = LightType.POINT; at(light, 'Transform', 'Orientation').setValue([0, 0, 0]);", /hidden/],
    ["point lights have no point of interest", "light.lightType = LightType.PARALLEL; at(light, 'Transform', 'Anchor Point').setValue([0, 0, 0]);",
        "light.lightType = LightType.POINT; at(light, 'Transform', 'Anchor Point').setValue([0, 0, 0]);", /hidden/],
    ["parallel lights have no cone", "light.lightType = LightType.SPOT; at(light, 'Light Options', 'Light Cone Angle').setValue(9);",
        "light.lightType = LightType.PARALLEL; at(light, 'Light Options', 'Light Cone Angle').setValue(9);", /hidden/],
    ["one-node cameras have no point of interest", "at(camera, 'Transform', 'Anchor Point').setValue([0, 0, 0]);",
        "camera.autoOrient = AutoOrientType.NO_AUTO_ORIENT; at(camera, 'Transform', 'Anchor Point').setValue([0, 0, 0]);", /hidden/],
    ["only spatial properties have tangents",
        "var p = at(camera, 'Transform', 'Position'); p.setValueAtTime(0, [1, 2, 3]); p.setSpatialTangentsAtKey(1, [0, 0, 0], [0, 0, 0]);",
        "var p = at(camera, 'Camera Options', 'Camera Zoom'); p.setValueAtTime(0, 9); p.setSpatialTangentsAtKey(1, [0], [0]);", /not spatial/],
    ["keys count from 1", "var p = at(camera, 'Transform', 'Position'); p.setValueAtTime(0, [1, 2, 3]); p.keyTime(1);",
        "var p = at(camera, 'Transform', 'Position'); p.setValueAtTime(0, [1, 2, 3]); p.keyTime(0);", /a key/],
    ["layers count from 1", "comp.layer(1);", "comp.layer(0);", /layer\(index\)/],
    ["a composition is not in itself", "comp.layers.add(still);", "comp.layers.add(comp);", /within itself/],
    ["an out-point comes after the in-point", "camera.outPoint = 1;", "camera.outPoint = 0;", /not after/],
    ["a placeholder has 4 pixels", "app.project.importPlaceholder('p', 4, 4, 25, 1);",
        "app.project.importPlaceholder('p', 3, 4, 25, 1);", /from 4/],
    ["JSON is not there", "String(1);", "JSON.stringify(1);", /undefined/],
    ["a solid's colour ends at 1", "comp.layers.addSolid([1, 1, 1], 's', 8, 8, 1, 1);",
        "comp.layers.addSolid([1, 1, 1.1], 's', 8, 8, 1, 1);", /to 1/],
    ["an opacity ends at 100", "at(comp.layers.addSolid([1, 1, 1], 's', 8, 8, 1, 1), 'Transform', 'Opacity').setValue(100);",
        "at(comp.layers.addSolid([1, 1, 1], 's', 8, 8, 1, 1), 'Transform', 'Opacity').setValue(101);", /to 100/],
    ["an expression is a text", "text(comp).expression = '1';", "text(comp).expression = 1;", /not a string/],
    ["text has no value but by time", "text(comp).valueAtTime(0, false).text;", "text(comp).valueAtTime(0, false).length;", /no member/],
    ["changes belong into an undo group", "comp.name = 'x';", "app.endUndoGroup(); comp.name = 'x';", /undo group/],
    ["an undo group is closed", "1;", "app.beginUndoGroup('another');", /left an undo group/],
];

const FILES = {
    "/d/still.tif": { width: 720, height: 576, alpha: true }, "/d/a.0001.tif": { width: 8, height: 8 },
    "/d/a.0002.tif": { width: 8, height: 8 }, "/d/bad.txl": { unreadable: true },
};

let failed = 0;
const expect = (name, holds, what) => {
    if (!holds) {
        ++failed;
        console.error(`${name}: ${what}`);
    }
};
const outcome = (statement) => {
    try {
        makeHost({ files: { ...FILES } }).run(START + statement + END);
        return "";
    } catch (error) {
        return String(error.message);
    }
};
for (const [name, works, throws, reason] of CASES) {
    expect(name, outcome(works) === "", `"${works}" threw "${outcome(works)}"`);
    expect(name, reason.test(outcome(throws)), `"${throws}" gave "${outcome(throws)}"`);
}

const late = makeHost({ startAtTime: 1.5 });
late.run(START.replace(/var still[^\n]*\n[^\n]*\n/, "\n") + END);
expect("a preference lets layers start at the current time", late.state.items[0].layers[0].start === 1.5, "it starts at 0");
const named = makeHost({ files: { ...FILES } });
named.run(START + END);
expect("a sequence is named by its numbers", named.state.items[2].raw.name === "a.[0001-0002].tif", named.state.items[2].raw.name);

const { makeExpressions } = require("./ae_expressions.js");
const asked = makeHost({ files: { ...FILES }, expressions: makeExpressions({}) });
asked.run(START + `var t = text(comp); t.expression = "thisComp.layer(9).toComp([0, 0, 0])[0];";
    alert(t.valueAtTime(0, false).text + ":" + t.expressionError); t.expression = "time * 2;";
    alert(t.valueAtTime(3, false).text + ":" + t.expressionError);` + END);
expect("an expression that fails leaves the text and says why", /^t:.*layer 9 is not there/.test(asked.state.alerts[0]), asked.state.alerts[0]);
expect("and another one is tried again", asked.state.alerts[1] === "6:", asked.state.alerts[1]);

console.log(`${CASES.length} traps of the stand-in, ${failed} failures`);
process.exit(failed > 0 ? 1 : 0);
