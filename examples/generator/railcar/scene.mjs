// The railcar's nodes. Every mesh stands below a bone whose name contains "r.", and so moves with
// it; a leaf without a mesh is an attachment point.
import { GltfFile } from '../gltf.mjs';
import { makeMesh, makeMeshAround } from '../mesh.mjs';
import { add, subtract, turnY } from '../vector.mjs';
import { floorHeight, makeBenches, makeDoor, makeInterior, makeShell, makeUnderside }
  from './body.mjs';
import { axleDistance, makeBogie, makeWheelset, pivotDistance, wheelRadius } from './bogie.mjs';
import * as fittings from './fittings.mjs';
import { loweredHeight, makeTracks } from './motion.mjs';
import * as pantograph from './pantograph.mjs';
import { pictures } from './textures.mjs';

const livery = 'body.tbump m.onetex';
const roof = 'roof m.onetex';
const glass = 'glass m.gloss';
const chrome = 'chrome m.reflect';
const undercarriage = 'undercarriage m.notex';
const interior = 'interior m.notex';
const benches = 'benches m.notex';
const springs = 'springs m.notex';
const oxide = 'red oxide m.notex';
const wheel = 'wheel m.onetex';
const lamp = 'lamp m.onetex';
const plate = 'plate m.onetex';

const bodyPivot = [0, 0.95, 0];
const bogiePivot = [0, 0.6, 0];

function addMaterials(file) {
  file.material(livery, { picture: 'livery.png', wrap: 'clamp', normals: 'livery_normal.png',
                          roughness: 0.45 });
  file.material(roof, { picture: 'roof.png', roughness: 0.9 });
  file.material(glass, { picture: 'glass.png', wrap: 'clamp', alphaMode: 'BLEND',
                         roughness: 0.1 });
  file.material(chrome, { colour: [0.72, 0.73, 0.75, 1], metallic: 1, roughness: 0.25 });
  file.material(undercarriage, { colour: [0.035, 0.034, 0.034, 1], roughness: 0.8 });
  file.material(interior, { colour: [0.2, 0.13, 0.075, 1], roughness: 0.9 });
  file.material(benches, { colour: [0.03, 0.09, 0.06, 1], roughness: 0.95 });
  file.material(springs, { colour: [0.16, 0.09, 0.03, 1], roughness: 0.6 });
  file.material(oxide, { colour: [0.2, 0.05, 0.025, 1], roughness: 0.25 });
  file.material(wheel, { picture: 'wheel.png', roughness: 0.5 });
  file.material(lamp, { picture: 'lamps.png', wrap: 'clamp', emissive: [0.12, 0.11, 0.09],
                        roughness: 0.15 });
  file.material(plate, { picture: 'notile_plate.png', roughness: 0.5 });
}

function doorBones() {
  return [0, 1].flatMap((which) => {
    const { pivot, livery: leaf, frames, panes, inside } = makeDoor(which);
    const mesh = makeMeshAround(pivot, { [livery]: leaf, [chrome]: frames, [glass]: panes,
                                         [interior]: inside });
    const left = subtract(pivot, bodyPivot);
    const right = [-left[0], left[1], -left[2]];
    const names = which === 0 ? ['front left', 'rear right'] : ['rear left', 'front right'];
    return [
      { name: `b.r.door ${names[0]}`, at: left, children: [{ name: `door ${names[0]}`, mesh }] },
      { name: `b.r.door ${names[1]}`, at: right, turn: turnY(180),
        children: [{ name: `door ${names[1]}`, mesh }] },
    ];
  });
}

function wiperBones() {
  const mesh = makeMesh({ [undercarriage]: fittings.makeWiper() });
  const front = subtract(fittings.wiperPivot, bodyPivot);
  return [
    { name: 'b.r.wiper front', at: front, turn: turnY(0),
      children: [{ name: 'wiper front', mesh }] },
    { name: 'b.r.wiper rear', at: [-front[0], front[1], -front[2]], turn: turnY(180),
      children: [{ name: 'wiper rear', mesh }] },
  ];
}

function pantographBones() {
  const turns = pantograph.armTurns(loweredHeight);
  const head = {
    name: 'b.r.pantograph.head', at: [0, 0, pantograph.upperLength], turn: turns.head,
    children: [
      { name: 'pantograph head', mesh: makeMesh({ [chrome]: pantograph.makeHead() }) },
      { name: 'contact wire', at: [0, 0.09, 0] },
    ],
  };
  const upper = {
    name: 'b.r.pantograph.upper', at: [0, 0, -pantograph.lowerLength], turn: turns.upper,
    children: [
      { name: 'pantograph upper arm', mesh: makeMesh({ [oxide]: pantograph.makeUpperArm() }) },
      head,
    ],
  };
  return {
    name: 'b.r.pantograph.lower', at: subtract(pantograph.foot, bodyPivot), turn: turns.lower,
    children: [
      { name: 'pantograph lower arm', mesh: makeMesh({ [oxide]: pantograph.makeLowerArm() }) },
      upper,
    ],
  };
}

function bodyMeshes() {
  const shell = makeShell();
  const foot = pantograph.makeFoot();
  const lamps = fittings.makeLamps();
  const onRoof = fittings.makeRoofEquipment();
  const node = (name, shapes) => ({ name, mesh: makeMeshAround(bodyPivot, shapes) });
  return [
    node('shell', { [livery]: shell.livery, [roof]: shell.roof,
                    [undercarriage]: makeUnderside() }),
    node('windows', { [chrome]: shell.frames, [glass]: shell.panes }),
    node('interior', { [interior]: makeInterior(), [benches]: makeBenches() }),
    node('underfloor', { [undercarriage]: fittings.makeUnderfloor() }),
    node('roof equipment', { [roof]: onRoof.boxes, [undercarriage]: onRoof.resistors,
                             [chrome]: onRoof.bright,
                             [oxide]: [...onRoof.insulators, ...foot.insulators, ...foot.frame] }),
    node('lamps', { [lamp]: lamps.lenses, [undercarriage]: lamps.cases }),
    node('handrails and buffers', { [chrome]: fittings.makeBrightwork() }),
    node('number plates', { [plate]: fittings.makePlates() }),
  ];
}

// Couplers, headlights and driver's eyes, those of the rear turned by half.
function attachmentPoints() {
  const lights = [...fittings.headlights, fittings.topLight].map(([x, y, z]) => [x, y, z + 0.03]);
  const places = {
    coupler: [0, fittings.bufferHeight, fittings.bufferFace],
    'headlight left': lights[0],
    'headlight right': lights[1],
    'headlight top': lights[2],
    driver: [0.45, floorHeight + 1.15, 6.05],
  };
  return Object.entries(places).flatMap(([name, place]) => [
    { name: `${name} front`, at: subtract(place, bodyPivot) },
    { name: `${name} rear`, at: subtract([-place[0], place[1], -place[2]], bodyPivot),
      turn: turnY(180) },
  ]);
}

function bogieBones() {
  const { frame, springs: coils } = makeBogie();
  const mesh = makeMeshAround(bogiePivot, { [undercarriage]: frame, [springs]: coils });
  const wheelset = makeMesh({ [wheel]: makeWheelset() });
  return ['front', 'rear'].map((end, i) => {
    const forward = i === 0 ? 1 : -1;
    const axles = [1, -1].map((place, k) => ({
      name: `b.r.axle ${2 * i + k + 1}`,
      at: [0, wheelRadius - bogiePivot[1], place * axleDistance],
      children: [{ name: `wheelset ${2 * i + k + 1}`, mesh: wheelset }],
    }));
    return { name: `b.r.bogie ${end}`, at: add(bogiePivot, [0, 0, forward * pivotDistance]),
             children: [{ name: `bogie frame ${end}`, mesh }, ...axles] };
  });
}

export function makeRailcar() {
  const file = new GltfFile(pictures());
  addMaterials(file);
  const doors = doorBones();
  const wipers = wiperBones();
  const bogies = bogieBones();
  const axles = bogies.flatMap(({ children }) => children)
    .filter(({ name }) => name.startsWith('b.'));
  const body = {
    name: 'b.r.body', at: bodyPivot,
    children: [...bodyMeshes(), ...doors, ...wipers, pantographBones(), ...attachmentPoints()],
  };
  file.add({ name: 'railcar', children: [{ name: 'b.root', children: [body, ...bogies] }] });
  const openingDoors = doors.filter(({ name }) => name.endsWith('left'));
  file.animation('departure', makeTracks({ body, doors: openingDoors, wipers, bogies, axles }));
  return file;
}
