<configprofile version="2.0" name="Autonomous mode - slippery">
	<group id="-1" label="Gauges (read only)">
		<item id="0" label="Initital Velocity (% of max)" type="blob">AAAAAAAAAAA=</item>
		<item id="1" label="Multiplier" type="blob">zczMzMzMDEA=</item>
	</group>
	<group id="-1" label="General Modes">
		<item id="8" label="Hide Helpers">0</item>
		<item id="9" label="Hide Helpers During Recording">0</item>
		<item id="10" label="Hide Follow Camera">1</item>
		<item id="11" label="Hide Driver Camera">1</item>
		<item id="12" label="Hide TopView Camera">1</item>
		<item id="13" label="Enable Seamless Transitions">1</item>
		<item id="14" label="Keyframe only essential objects">0</item>
	</group>
	<group id="-1" label="Autonomous Mode Properties">
		<item id="15" label="Autonomous Mode">1</item>
		<item id="16" label="Autonomous mode follow strength" type="blob">AAAAAAAA4D8=</item>
		<item id="17" label="Follow Strength Response Factor" type="blob">exSuR+F6lD8=</item>
		<item id="18" label="Auto-Steering Response Factor" type="blob">mpmZmZmZyT8=</item>
		<item id="19" label="Reverse Max Vel Mult" type="blob">AAAAAAAA4D8=</item>
		<item id="20" label="Ignore Sphere Radius (length relative)" type="blob">AAAAAAAA4D8=</item>
	</group>
	<group id="-1" label="Steering Properties">
		<item id="21" label="Maximum Steering Change Velocity" type="blob">AAAAAAAAAEA=</item>
		<item id="22" label="Speed Dependent Turn Radius Reduction Factor" type="blob">mpmZmZmZyT8=</item>
		<item id="23" label="Steering Noise" type="blob">AAAAAAAAAAA=</item>
		<item id="24" label="Steering Wheel Rot Mult" type="blob">AAAAAAAA8D8=</item>
		<item id="25" label="Turn Base (Back Wheel Relative)" type="blob">AAAAAAAAAAA=</item>
	</group>
	<group id="-1" label="Suspension Properties">
		<item id="26" label="Front Stiffness" type="blob">AAAAAABAn0A=</item>
		<item id="27" label="Front Damping" type="blob">AAAAAAAAaUA=</item>
		<item id="28" label="Back Stiffness" type="blob">AAAAAABAn0A=</item>
		<item id="29" label="Back Damping" type="blob">AAAAAAAAaUA=</item>
		<item id="30" label="Tire Pressure" type="blob">mpmZmZmZ6T8=</item>
		<item id="31" label="Maximum Forward Tilt Angle" type="blob">uB6F61G4rj8=</item>
		<item id="32" label="Maximum Side Tilt Angle" type="blob">7FG4HoXrsT8=</item>
		<item id="33" label="Booster Stiffness Multiplier" type="blob">MzMzMzMz0z8=</item>
		<item id="34" label="Mass Multiplier" type="blob">AAAAAAAAAEA=</item>
	</group>
	<group id="-1" label="General Properties">
		<item id="35" label="Fixate Wheel Center Nodes">0</item>
		<item id="36" label="Move WheelCenterMesh to ground hit point">0</item>
		<item id="37" label="Align WheelCenterMesh to ground incline">0</item>
		<item id="38" label="Use Reverse As ABS Brake">1</item>
		<item id="39" label="Skidding Offset Value" type="blob">AAAAAAAAAAA=</item>
		<item id="40" label="Skidding Release Value (Lateral Vel Rel)" type="blob">AAAAAAAAAAA=</item>
		<item id="41" label="Skidding Release Response Factor" type="blob">AAAAAAAA8D8=</item>
		<item id="42" label="Gravel Shake Offset Value" type="blob">AAAAAAAA4D8=</item>
		<item id="43" label="Gravel Roughness" type="blob">zczMzMzM7D8=</item>
		<item id="44" label="External Force Offset Value" type="blob">AAAAAAAAAAA=</item>
		<item id="45" label="Skid Brake Stop Factor" type="blob">AAAAAAAA8D8=</item>
		<item id="46" label="Skid Brake Rot Brake Mult" type="blob">AAAAAAAA8D8=</item>
		<item id="47" label="Burnout Shake" type="blob">mpmZmZmZyT8=</item>
		<item id="48" label="Burnout Tilting Force" type="blob">AAAAAAAA8D8=</item>
		<item id="49" label="Burnout Fadeout Factor" type="blob">rkfhehSu7z8=</item>
		<item id="50" label="Random Seed Adder">0</item>
		<item id="51" label="World Avoidance Sphere (scale relative)" type="blob">AAAAAAAAAAA=</item>
		<item id="52" label="Wheel Radius Multiplier" type="blob">ZmZmZmZm7j8=</item>
		<item id="53" label="Gravity" type="blob">AAAAAAAA8D8=</item>
	</group>
	<group id="-1" label="Ray Cast Properties">
		<item id="54" label="Ray Multiplier">10</item>
		<item id="55" label="Cast Rays at Wheel Edges">1</item>
		<item id="56" label="Degrees Per Ray" type="blob">AAAAAAAAAEA=</item>
		<item id="57" label="Use Fast Ray Cast">1</item>
		<item id="58" label="Store Ground Mesh Data">0</item>
	</group>
	<group id="-1" label="Input Property Parameters">
		<item id="59" label="Acceleration (scale relative)" type="blob">AAAAAAAAAEA=</item>
		<item id="60" label="Gas Pedal (Forw/Backw) Response Factor" type="blob">exSuR+F6hD8=</item>
		<item id="61" label="Gas Pedal (Forw/Backw) Maximum" type="blob">AAAAAAAACEA=</item>
		<item id="62" label="Steering Wheel (Right/Left) Response Factor" type="blob">mpmZmZmZuT8=</item>
		<item id="63" label="Steering Wheel (Right/Left) Maximum" type="blob">ZmZmZmZm5j8=</item>
		<item id="64" label="Booster Response Factor" type="blob">exSuR+F6lD8=</item>
		<item id="65" label="Booster Maximum" type="blob">AAAAAAAAGEA=</item>
		<item id="66" label="ABS Brake Response Factor" type="blob">AAAAAAAA8D8=</item>
		<item id="67" label="ABS Brake Maximum" type="blob">uB6F61G4nj8=</item>
		<item id="68" label="Skidding Response Factor" type="blob">mpmZmZmZuT8=</item>
		<item id="69" label="Skidding Maximum" type="blob">zczMzMzM7D8=</item>
		<item id="70" label="Skid Brake Response Factor" type="blob">mpmZmZmZuT8=</item>
		<item id="71" label="Skid Brake Maximum" type="blob">AAAAAAAA8D8=</item>
		<item id="72" label="Gravel Shake Amplitude Response Factor" type="blob">AAAAAAAA8D8=</item>
		<item id="73" label="Gravel Shake Amplitude Maximum" type="blob">mpmZmZmZqT8=</item>
		<item id="74" label="Burnout Response Factor" type="blob">uB6F61G4nj8=</item>
		<item id="75" label="Burnout Maximum" type="blob">AAAAAAAACEA=</item>
		<item id="76" label="External Force Response Factor" type="blob">AAAAAAAA8D8=</item>
		<item id="77" label="External Force Maximum" type="blob">AAAAAAAAWUA=</item>
	</group>
</configprofile>