// What a second run changes and keeps: update_test.js RUNTIME_FOLDER. The scene is written by hand.
"use strict";

const fs = require("fs");
const path = require("path");
const { makeHost } = require("./ae_mock.js");

const PIECES = ["scene", "summary", "identity", "footage", "properties", "layers", "rebuild"];
const runtime = PIECES.map((piece) => fs.readFileSync(path.join(process.argv[2], piece + ".jsx"), "latin1")).join("\n");

// The parts of a scene that the cases change.
const USUAL = {
    undoSafe: false, name: "Main", width: 720, plate: "plate.tif", position: "[1,2,3,4,5,6]", mark: "p1", camera: "Camera", frames: "[0,5]", more: "",
};

function script(changes = {}) {
    const is = { ...USUAL, ...changes };
    return `(function () {\n${runtime}
SCENE={name:"shot.aec",from:10,to:20,start:10,rate:25,undoSafe:${is.undoSafe}};
item({id:"vxr-1",kind:"composition",name:"${is.name}",folder:-1,composition:{width:${is.width},height:576,aspect:1,frames:100,rate:25},layers:[]});
item({id:"vxr-2",kind:"still",name:"plate.tif",folder:-1,footage:{width:720,height:576,frames:0,rate:0,aspect:1,alpha:"straight",
premultipliedWith:[0,0,0],fields:"none",name:"${is.plate}",near:"",path:"/shots/${is.plate}",first:0,last:0,whole:true},layers:[]});
layer(0,{id:"vxr-3",kind:"camera",name:"${is.camera}",aimed:true,center:[360,288],start:10,inFrame:10,length:11,timed:true,
marks:["position","${is.mark}"],read:function(){ track("position","linear"); frames(${is.frames}); values(${is.position}); }});
${is.more}
layer(0,{id:"vxr-4",kind:"footage",name:"plate.tif",item:1,blend:"add",threeD:false,start:10,inFrame:10,length:11,timed:true,marks:[],read:function(){}});
rebuild();
})();`;
}

const NEW_NULL = `layer(0,{id:"vxr-5",kind:"null",name:"Null",blend:"normal",threeD:true,start:10,inFrame:10,length:11,timed:true,
marks:[],read:function(){}});`;
const FILES = { "/shots/plate.tif": { width: 720, height: 576, alpha: true }, "/shots/plate_v2.tif": { width: 720, height: 576, alpha: true } };

let failed = 0;
let cases = 0;
function check(name, host, holds) {
    ++cases;
    if (!holds) {
        ++failed;
        console.error(`${name}\n    ${host.state.alerts.join("\n    ")}`);
    }
}
function imported(options = {}) {
    const host = makeHost({ files: { ...FILES }, script: "/scripts/shot.jsx", ...options });
    host.run(script());
    return host;
}
const artist = (host, text) => host.run(`app.beginUndoGroup("artist"); var comp = app.project.items[1]; ${text}; app.endUndoGroup();`);
const comp = (host) => host.state.items[0];
const layerNamed = (host, name) => comp(host).layers.find((layer) => layer.raw.name === name);
const position = (layer) => layer.groups["ADBE Transform Group"].list["ADBE Position"].record;
const last = (host) => host.state.alerts[host.state.alerts.length - 1];

{
    const host = imported();
    const keys = position(layerNamed(host, "Camera")).keys;
    check("keys are in composition time", host, keys.length === 2 && keys[0].time === 0.4 && keys[1].time === 0.6);
    check("linear keys have no tangents and are not smoothed", host, keys.every((key) =>
        !key.auto && !key.continuous && JSON.stringify(key.tangents) === "[[0,0,0],[0,0,0]]" && key.into === host.constants.KeyType.LINEAR));
    check("FROM and TO have markers", host, comp(host).raw.markerProperty.numKeys === 2 &&
        comp(host).raw.markerProperty.keyTime(1) === 0.4 && comp(host).raw.markerProperty.keyValue(2).comment === "TO 20");
    host.run(script({ position: "[1,2,3,7,8,9]", mark: "p2" }));
    check("new keys replace the old ones", host, JSON.stringify(position(layerNamed(host, "Camera")).keys.map((key) => key.value)) === "[[1,2,3],[7,8,9]]");
    host.run(script({ frames: "[1,6]", mark: "p3" }));
    check("keys at other frames leave none of the old ones", host,
        JSON.stringify(position(layerNamed(host, "Camera")).keys.map((key) => key.time)) === "[0.44,0.64]");
    check("the summary counts what changed", host, /1 of 2 layers changed, 0 are new; 0 of 2 items changed, 0 are new/.test(last(host)));
}
{
    const host = imported();
    artist(host, "comp.layer(1).name = 'Hero camera'; comp.layer(1).comment = 'mine ' + comp.layer(1).comment + ' too'; comp.name = 'Shot 1'");
    host.run(script({ position: "[1,2,3,7,8,9]", mark: "p2", camera: "Cam", name: "Scene" }));
    check("an artist's names stay", host, comp(host).raw.name === "Shot 1" && layerNamed(host, "Hero camera"));
    check("an artist's comment stays around the id", host, /^mine \{vxr-3 .*\} too$/.test(layerNamed(host, "Hero camera").raw.comment));
    check("and the layer is still found", host, position(layerNamed(host, "Hero camera")).keys[1].value[0] === 7);
}
{
    const host = imported();
    host.run(script({ camera: "Cam", name: "Scene" }));
    check("names follow the scene where the artist left them", host, comp(host).raw.name === "Scene" && layerNamed(host, "Cam"));
}
{
    const host = imported();
    artist(host, "comp.layer(1).property('ADBE Transform Group').property('ADBE Position').setValueAtTime(0, [9, 9, 9]); comp.layer(2).inPoint = 0.5");
    const before = host.state.changes;
    host.run(script());
    check("what the scene still says is not touched", host, host.state.changes === before && /has not changed/.test(last(host)));
}
{
    const host = imported();
    artist(host, "var n = comp.layers.addNull(); n.property('ADBE Transform Group').property('ADBE Position').setValue([100, 0, 0]); comp.layer(2).parent = n");
    host.run(script({ position: "[101,2,3,107,8,9]", mark: "p2" }));
    const camera = layerNamed(host, "Camera");
    check("a parent stays, and the layer is where the scene says", host, camera.parent && position(camera).keys[1].value[0] === 7);
    check("an added layer stays", host, comp(host).layers.length === 3);
}
{
    const host = imported();
    host.run(script({ more: NEW_NULL }));
    check("a new layer comes between its neighbours", host, comp(host).layers.map((layer) => layer.kind).join() === "camera,null,footage");
    host.run(script());
    check("nothing is removed", host, comp(host).layers.length === 3);
}
{
    const host = imported();
    host.run(script({ plate: "plate_v2.tif", width: 640 }));
    check("footage is swapped within its item", host, host.state.items.length === 2 && host.state.items[1].source.uri === "/shots/plate_v2.tif");
    check("settings of compositions follow", host, comp(host).raw.width === 640);
}
{
    const host = makeHost({ files: {}, script: "/scripts/shot.jsx" });
    host.run(script());
    check("a missing file becomes a placeholder of its size", host, host.state.items[1].source.kind === "placeholder" &&
        host.state.items[1].source.width === 720 && /neither beside the script nor where it was/.test(last(host)));
    Object.assign(host.files, { "/scripts/plate.tif": FILES["/shots/plate.tif"] });
    host.run(script());
    check("footage that appears beside the script replaces it", host, host.state.items[1].source.uri === "/scripts/plate.tif");
}
{
    const host = makeHost({ files: { ...FILES }, script: "/scripts/shot.jsx", answer: false });
    host.run(script({ undoSafe: true }));
    check("undo-safe names what it will touch", host, /the layer 'Camera' in 'Main'/.test(host.state.confirms[0]));
    check("and touches nothing without a yes", host, host.state.changes === 0 && host.state.items.length === 0);
}
{
    const host = imported({ renderEngine: true });
    check("without a window the summary is a file beside the script", host,
        /has arrived: 2 items, 2 layers/.test(host.state.written["/scripts/shot-summary.txt"]) && host.state.alerts.length === 0);
}
{
    const host = imported({ version: 13.8 });
    check("versions without markers on compositions import all the same", host, comp(host).layers.length === 2 && /has arrived/.test(last(host)));
}

console.log(`${cases} checks of a second run, ${failed} failures`);
process.exit(failed > 0 ? 1 : 0);
